// The server's JSON API, with the session token of the page's address.

export const token: string = new URLSearchParams(location.search).get("token") ?? "";

export type Json = any;

async function call(method: string, path: string, body?: Json): Promise<Json> {
  const res = await fetch(path, {
    method,
    headers: { "Content-Type": "application/json", "X-Velm-Token": token },
    body: body === undefined ? undefined : JSON.stringify(body),
  });
  const text = await res.text();
  try {
    return JSON.parse(text);
  } catch {
    return { messages: [text || `The server answered ${res.status}.`] };
  }
}

export const get = (path: string): Promise<Json> => call("GET", path);
export const post = (path: string, body: Json): Promise<Json> => call("POST", path, body);
export const put = (path: string, body: Json): Promise<Json> => call("PUT", path, body);
