// The program devsqlserver: opens the engine, serves it on loopback, and ends when the operator or the system
// asks it to. It starts the protocol and the language and knows nothing of how they work.
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "devserver/engine/engine.h"
#include "devserver/linked/odbc_remote.h"
#include "devserver/options.h"
#include "devserver/system/end_signal.h"
#include "devserver/tds/browser.h"
#include "devserver/tds/server.h"

namespace {

// The exit codes: wrong usage, and any other failure.
constexpr int kUsageFailure = 2;
constexpr int kFailure = 1;

/// Runs the server until an end signal comes. Throws std::exception if it cannot start.
void Serve(devsql::ProgramOptions options) {
    devsql::system::TakeEndSignals();
    const auto engine = devsql::OpenEngine(std::move(options.engine));
    devsql::tds::ServerOptions server_options;
    server_options.port = options.port;
    devsql::tds::Server server(*engine, server_options);
    std::optional<devsql::tds::Browser> browser;
    if (options.browser_port) {
        browser.emplace(devsql::tds::BrowserEntry{engine->ServerName(), server.port()},
                        *options.browser_port);
    }
    std::thread running([&server] { server.Run(); });
    std::cout << "devsqlserver: ready on 127.0.0.1:" << server.port() << std::endl;
    if (browser) {
        std::cout << "devsqlserver: answers as SQL Browser on UDP 127.0.0.1:" << browser->port() << std::endl;
    }
    devsql::system::WaitForEndSignal();
    server.Stop();
    running.join();
}

int Run(const std::vector<std::string>& arguments) {
    devsql::ProgramOptions options = devsql::ParseArguments(arguments);
    switch (options.action) {
    case devsql::Action::Help:
        std::cout << devsql::HelpText();
        return 0;
    case devsql::Action::Version:
        std::cout << devsql::VersionText();
        return 0;
    case devsql::Action::Serve:
        break;
    }
    options.engine.logins = devsql::ReadLogins(options.logins_file);
    options.engine.connect_remote = devsql::ConnectByOdbc;
    Serve(std::move(options));
    devsql::system::TellEnded();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return Run({argv + 1, argv + argc});
    } catch (const devsql::UsageError& error) {
        std::cerr << "devsqlserver: " << error.what() << "\nTry devsqlserver --help.\n";
        return kUsageFailure;
    } catch (const std::exception& error) {
        std::cerr << "devsqlserver: " << error.what() << "\n";
        return kFailure;
    }
}
