// devsqlserver: opens the engine, serves it on loopback, ends on SIGTERM or SIGINT.
// Knows of protocol and language only that they exist.
#include <csignal>
#include <exception>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "devserver/options.h"
#include "devserver/tds/server.h"
#include "devserver/tsql/engine.h"

namespace {

constexpr int kUsageFailure = 2;
constexpr int kFailure = 1;

/// The signals that end the server. Blocked in every thread, so that the main thread can wait for them.
sigset_t EndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    return signals;
}

void Serve(devsql::EngineOptions engine_options, std::uint16_t port) {
    const sigset_t signals = EndSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    // A client that goes while it is written to is an error of that write, not the end of the server.
    std::signal(SIGPIPE, SIG_IGN);
    const auto engine = devsql::OpenEngine(std::move(engine_options));
    devsql::tds::ServerOptions options;
    options.port = port;
    devsql::tds::Server server(*engine, options);
    std::thread running([&server] { server.Run(); });
    std::cout << "devsqlserver: ready on 127.0.0.1:" << server.port() << std::endl;
    int signal = 0;
    sigwait(&signals, &signal);
    server.Stop();
    running.join();
}

int Run(const std::vector<std::string>& arguments) {
    const devsql::ProgramOptions options = devsql::ParseArguments(arguments);
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
    devsql::EngineOptions engine = options.engine;
    engine.logins = devsql::ReadLogins(options.logins_file);
    Serve(std::move(engine), options.port);
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
