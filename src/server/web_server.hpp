// The page and the JSON API of one session over HTTP, on the loopback address
// only: every request carries the session token (query parameter "token" or
// header X-Velm-Token), names this host in Host, and, when it has an Origin,
// comes from this page.
#pragma once

#include <memory>
#include <string>

#include "server/session.hpp"

namespace httplib {
class Server;
}

namespace velm {

// A fresh session token: 32 hexadecimal digits from the system's random source.
std::string new_token();

class WebServer {
public:
    WebServer(Session& session, std::string token);
    ~WebServer();

    // Binds 127.0.0.1:port (0: a free port); returns the port, or -1.
    int bind(int port);
    // Serves until stop(); returns when the server has stopped.
    void listen();
    void stop();
    std::string url() const;
    // Set by the page's Exit: the program may end.
    bool exit_requested() const { return exit_requested_; }

private:
    void routes();
    bool allowed(const std::string& host, const std::string& origin, const std::string& token) const;

    Session& session_;
    std::string token_;
    int port_ = 0;
    bool exit_requested_ = false;
    std::unique_ptr<httplib::Server> http_;
};

}  // namespace velm
