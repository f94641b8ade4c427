#include "server/web_server.hpp"

#include <httplib.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <random>
#include <sstream>
#include <thread>

#include "dialogs/check_input.hpp"
#include "dialogs/dialogs.hpp"
#include "server/web_files.hpp"

namespace velm {

namespace {

using Json = nlohmann::json;

void reply_json(httplib::Response& res, const Json& j, int status = 200) {
    res.status = status;
    // With its charset named the reply is sent as it stands: compressing it costs more than it saves on loopback.
    res.set_content(j.dump(), "application/json; charset=utf-8");
}

// The request's JSON body; an empty body is an empty object.
bool body_json(const httplib::Request& req, httplib::Response& res, Json& j) {
    if (req.body.empty()) {
        j = Json::object();
        return true;
    }
    j = Json::parse(req.body, nullptr, false);
    if (j.is_discarded() || !j.is_object()) {
        reply_json(res, {{"message", "The request body is not a JSON object."}}, 400);
        return false;
    }
    return true;
}

std::vector<int> answers_of(const Json& j) {
    std::vector<int> a;
    if (j.contains("answers") && j["answers"].is_array())
        for (const Json& v : j["answers"])
            if (v.is_number_integer()) a.push_back(v.get<int>());
    return a;
}

float number_of(const Json& j, const char* key) {
    return j.contains(key) && j[key].is_number() ? j[key].get<float>() : 0.0f;
}

// The number of a route's (\d{1,9}) part: at most nine digits always fit an int.
int index_of(const std::string& digits) {
    int n = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), n);
    return n;
}

bool flag_of(const Json& j, const char* key) { return j.contains(key) && j[key].is_boolean() && j[key].get<bool>(); }

// The page with its style and script built in, so that one request brings it all.
std::string page_html() {
    std::string html(embedded_web_file("index.html"));
    const auto put = [&](const std::string& mark, std::string_view text) {
        const auto at = html.find(mark);
        if (at != std::string::npos) html.replace(at, mark.size(), text);
    };
    put("/*VELM_STYLE*/", embedded_web_file("style.css"));
    put("/*VELM_SCRIPT*/", embedded_web_file("app.js"));
    return html;
}

// The folders and project files of a directory, for the page's file picker.
Json list_directory(const std::string& dir) {
    namespace fs = std::filesystem;
    std::error_code ec;
    fs::path d = dir.empty() ? fs::current_path(ec) : fs::path(dir);
    d = fs::absolute(d, ec);
    Json entries = Json::array();
    for (fs::directory_iterator it(d, ec), end; !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().filename().string();
        if (name.empty() || name[0] == '.') continue;
        entries.push_back({{"name", name}, {"dir", it->is_directory(ec)}});
    }
    std::sort(entries.begin(), entries.end(), [](const Json& a, const Json& b) {
        if (a["dir"] != b["dir"]) return a["dir"].get<bool>();
        return a["name"].get<std::string>() < b["name"].get<std::string>();
    });
    return {{"dir", d.string()}, {"parent", d.parent_path().string()}, {"entries", entries}, {"error", ec ? ec.message() : ""}};
}

}  // namespace

std::string new_token() {
    std::random_device rd;
    std::ostringstream s;
    for (int i = 0; i < 4; ++i) {
        char part[9];
        std::snprintf(part, sizeof part, "%08x", rd());
        s << part;
    }
    return s.str();
}

WebServer::WebServer(Session& session, std::string token)
    : session_(session), token_(std::move(token)), http_(std::make_unique<httplib::Server>()) {
    routes();
}

WebServer::~WebServer() = default;

int WebServer::bind(int port) {
    port_ = port == 0 ? http_->bind_to_any_port("127.0.0.1") : (http_->bind_to_port("127.0.0.1", port) ? port : -1);
    return port_;
}

void WebServer::listen() { http_->listen_after_bind(); }

void WebServer::stop() { http_->stop(); }

std::string WebServer::url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/?token=" + token_; }

bool WebServer::allowed(const std::string& host, const std::string& origin, const std::string& token) const {
    const std::string port = std::to_string(port_);
    const bool host_ok = host == "127.0.0.1:" + port || host == "localhost:" + port;
    const bool origin_ok = origin.empty() || origin == "http://127.0.0.1:" + port || origin == "http://localhost:" + port;
    return host_ok && origin_ok && token == token_;
}

void WebServer::routes() {
    httplib::Server& s = *http_;
    // Replies go out at once: a sheet is hundreds of kilobytes, and the page waits on every pointer event.
    s.set_tcp_nodelay(true);
    s.set_pre_routing_handler([this](const httplib::Request& req, httplib::Response& res) {
        std::string token = req.get_param_value("token");
        if (token.empty()) token = req.get_header_value("X-Velm-Token");
        if (allowed(req.get_header_value("Host"), req.get_header_value("Origin"), token))
            return httplib::Server::HandlerResponse::Unhandled;
        res.status = 403;
        res.set_content("Velm: this request lacks the session token that velm serve printed, or comes from another site.",
                        "text/plain");
        return httplib::Server::HandlerResponse::Handled;
    });
    s.set_post_routing_handler([](const httplib::Request&, httplib::Response& res) {
        res.set_header("Cache-Control", "no-store");
        res.set_header("X-Content-Type-Options", "nosniff");
    });

    s.Get("/", [](const httplib::Request&, httplib::Response& res) { res.set_content(page_html(), "text/html"); });

    s.Get("/api/sheet", [this](const httplib::Request& req, httplib::Response& res) {
        std::lock_guard<std::mutex> g(session_.lock);
        reply_json(res, session_.sheet(req.get_param_value("labels")));
    });

    s.Get(R"(/api/item/([A-Za-z]+)/(\d{1,9}))", [this](const httplib::Request& req, httplib::Response& res) {
        std::lock_guard<std::mutex> g(session_.lock);
        reply_json(res, session_.item_card(req.matches[1], index_of(req.matches[2])));
    });

    s.Get(R"(/api/dialog/([A-Za-z]+)/(\d{1,9}))", [this](const httplib::Request& req, httplib::Response& res) {
        std::lock_guard<std::mutex> g(session_.lock);
        const Json units = Json::parse(req.get_param_value("units"), nullptr, false);
        const Json d = session_.dialog(req.matches[1], index_of(req.matches[2]), units.is_discarded() ? Json{} : units);
        reply_json(res, d, d.contains("fields") ? 200 : 404);
    });

    s.Put(R"(/api/dialog/([A-Za-z]+)/(\d{1,9}))", [this](const httplib::Request& req, httplib::Response& res) {
        Json in;
        if (!body_json(req, res, in)) return;
        std::lock_guard<std::mutex> g(session_.lock);
        RequestInteraction io(answers_of(in));
        Json d;
        try {
            d = session_.apply_dialog_texts(io, req.matches[1], index_of(req.matches[2]),
                                            in.value("fields", Json::object()), in.value("units", Json::object()));
        } catch (const NeedAnswer& q) {
            session_.undo_pending();
            d = {{"question", {{"text", q.question}, {"choices", q.choices}}}};
        }
        reply_json(res, d, d.contains("fields") || d.contains("question") ? 200 : 422);
    });

    s.Post(R"(/api/dialog/Phase/(\d{1,9})/flash)", [this](const httplib::Request& req, httplib::Response& res) {
        Json in;
        if (!body_json(req, res, in)) return;
        std::lock_guard<std::mutex> g(session_.lock);
        const Json d = session_.phase_flash(index_of(req.matches[1]), in.value("fields", Json::object()),
                                            in.value("units", Json::object()));
        reply_json(res, d, d.contains("fields") ? 200 : 422);
    });

    s.Get(R"(/api/plot/([A-Za-z]+)/(\d{1,9}))", [this](const httplib::Request& req, httplib::Response& res) {
        std::lock_guard<std::mutex> g(session_.lock);
        reply_json(res, session_.plot(req.matches[1], index_of(req.matches[2])));
    });

    s.Get(R"(/api/options/(mnuOptions[A-Za-z]+))", [this](const httplib::Request& req, httplib::Response& res) {
        std::lock_guard<std::mutex> g(session_.lock);
        const Json d = session_.options_dialog(req.matches[1]);
        reply_json(res, d, d.contains("fields") ? 200 : 404);
    });

    s.Put(R"(/api/options/(mnuOptions[A-Za-z]+))", [this](const httplib::Request& req, httplib::Response& res) {
        Json in;
        if (!body_json(req, res, in)) return;
        std::lock_guard<std::mutex> g(session_.lock);
        const Json d = session_.apply_options_texts(req.matches[1], in.value("fields", Json::object()));
        reply_json(res, d, d.contains("fields") ? 200 : 422);
    });

    // A unit box changed: the texts on show of its quantity from one unit to the other.
    s.Post("/api/convert", [](const httplib::Request& req, httplib::Response& res) {
        Json in;
        if (!body_json(req, res, in)) return;
        RecordingInteraction quiet;
        RunContext ctx(quiet);
        const std::string cls = in.value("class", std::string()), from = in.value("from", std::string()),
                          to = in.value("to", std::string());
        Json out = Json::object();
        if (in.contains("texts") && in["texts"].is_object())
            for (const auto& [name, text] : in["texts"].items())
                if (text.is_string()) out[name] = convert_entry(ctx, text.get<std::string>(), cls, from, to);
        reply_json(res, {{"texts", out}});
    });

    s.Post("/api/check-input", [this](const httplib::Request& req, httplib::Response& res) {
        Json in;
        if (!body_json(req, res, in)) return;
        const auto text = [&](const char* k) { return in.contains(k) && in[k].is_string() ? in[k].get<std::string>() : ""; };
        double patm = 101.325;
        {
            std::lock_guard<std::mutex> g(session_.lock);
            patm = session_.project().gen.PATM;
        }
        reply_json(res, {{"message", CheckInput(text("kind"), text("unit"), text("value"), patm)}});
    });

    s.Get("/api/run", [this](const httplib::Request&, httplib::Response& res) { reply_json(res, session_.run_state()); });

    s.Get("/api/state", [this](const httplib::Request&, httplib::Response& res) {
        std::lock_guard<std::mutex> g(session_.lock);
        reply_json(res, {{"dirty", session_.dirty()}, {"runActive", session_.run_active()},
                         {"file", session_.file().string()}});
    });

    s.Get("/api/files", [](const httplib::Request& req, httplib::Response& res) {
        reply_json(res, list_directory(req.get_param_value("dir")));
    });

    s.Get(R"(/api/download/(runlog\.txt|resulth\.rtf|resultm\.rtf))",
          [this](const httplib::Request& req, httplib::Response& res) {
              const std::string name = req.matches[1];
              std::ifstream in(session_.data_dir() / name, std::ios::binary);
              if (!in) return reply_json(res, {{"message", "File not found. Run hydraulics/HMB to create file."}}, 404);
              std::ostringstream body;
              body << in.rdbuf();
              res.set_header("Content-Disposition", "attachment; filename=\"" + name + "\"");
              res.set_content(body.str(), name.ends_with(".rtf") ? "application/rtf" : "text/plain");
          });

    // Pointer, key, tool and command requests: a question without an answer
    // comes back as {"question": ...}, nothing changed, to be sent again with it.
    const auto interactive = [this](const httplib::Request& req, httplib::Response& res, auto&& act) {
        Json in;
        if (!body_json(req, res, in)) return;
        RequestInteraction io(answers_of(in));
        Json reply;
        std::lock_guard<std::mutex> g(session_.lock);
        try {
            reply = act(io, in);
        } catch (const NeedAnswer& q) {
            session_.undo_pending();
            reply = Json::object();
            reply["question"] = {{"text", q.question}, {"choices", q.choices}};
        }
        if (reply.is_null()) reply = Json::object();
        reply["messages"] = io.told;
        if (reply.value("changed", false) && !reply.contains("sheet")) reply["sheet"] = session_.sheet();
        reply_json(res, reply, reply.contains("status_code") ? reply["status_code"].get<int>() : 200);
    };

    s.Post("/api/pointer", [this, interactive](const httplib::Request& req, httplib::Response& res) {
        interactive(req, res, [this](Interaction& io, const Json& in) {
            PointerEvent e{number_of(in, "x"), number_of(in, "y"), in.value("button", 1), flag_of(in, "shift"),
                           flag_of(in, "ctrl")};
            return session_.pointer(io, in.value("type", std::string("move")), e);
        });
    });

    s.Post("/api/key", [this, interactive](const httplib::Request& req, httplib::Response& res) {
        interactive(req, res, [this](Interaction& io, const Json& in) {
            return session_.key(io, in.value("key", 0), flag_of(in, "shift"), flag_of(in, "ctrl"));
        });
    });

    s.Post("/api/tool", [this, interactive](const httplib::Request& req, httplib::Response& res) {
        interactive(req, res, [this](Interaction&, const Json& in) {
            session_.arm_tool(in.value("tool", 0));
            return Json{{"drawAction", session_.draw_state().DrawAction}, {"status", session_.draw_state().status}};
        });
    });

    s.Post(R"(/api/dialog/(Pump|Comp)/(\d{1,9})/typical-curve)", [this, interactive](const httplib::Request& req,
                                                                                    httplib::Response& res) {
        const std::string kind = req.matches[1];
        const int index = index_of(req.matches[2]);
        interactive(req, res, [this, kind, index](Interaction& io, const Json&) {
            return session_.typical_curve(io, kind, index);
        });
    });

    s.Post(R"(/api/command/([A-Za-z]+))", [this, interactive](const httplib::Request& req, httplib::Response& res) {
        const std::string name = req.matches[1];
        interactive(req, res, [this, name](Interaction& io, const Json& in) {
            Json reply = Json::object();
            if (!session_.command(io, name, in.value("args", Json::object()), reply))
                return Json{{"message", "No command " + name + "."}, {"status_code", 404}};
            if (reply.value("exit", false)) {
                exit_requested_ = true;
                std::thread([this] {
                    std::this_thread::sleep_for(std::chrono::milliseconds(200));
                    stop();
                }).detach();
            }
            return reply;
        });
    });
}

}  // namespace velm
