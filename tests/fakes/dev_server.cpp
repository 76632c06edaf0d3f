// Starts, stops and kills the server's process.
#include "fakes/dev_server.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fakes {
namespace {

constexpr int kReadyMilliseconds = 60000;

/// The first line that is read from the pipe; the part that has come when the time is over.
std::string ReadLine(int pipe) {
    std::string line;
    pollfd waiting{pipe, POLLIN, 0};
    char character = 0;
    while (poll(&waiting, 1, kReadyMilliseconds) == 1 && read(pipe, &character, 1) == 1 &&
           character != '\n') {
        line += character;
    }
    return line;
}

std::filesystem::path NewFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "dev_server_XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no folder can be made for a development server");
    }
    return pattern;
}

} // namespace

DevServer::DevServer() : folder_(NewFolder()) {
    Prepare();
}

DevServer::DevServer(const std::filesystem::path& model) : folder_(NewFolder()) {
    std::filesystem::copy(model, folder_, std::filesystem::copy_options::recursive);
    Prepare();
}

void DevServer::Prepare() {
    setenv("ODBCSYSINI", KV_ODBC_CONFIG, 1); // the driver "SQL Server", wherever the tests run
    std::ofstream(folder_ / "logins") << "sa:Test-1\n";
    std::filesystem::permissions(folder_ / "logins",
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    try {
        StartAndWait();
    } catch (const std::runtime_error&) {
        std::filesystem::remove_all(folder_);
        throw;
    }
}

void DevServer::StartAndWait() {
    const int output = Start(folder_ / "logins");
    const std::string line = ReadLine(output);
    close(output);
    if (std::sscanf(line.c_str(), "devsqlserver: ready on 127.0.0.1:%d", &port_) != 1) {
        Stop();
        throw std::runtime_error("the development server did not start: " + line);
    }
}

void DevServer::StartAgain() {
    StartAndWait();
}

int DevServer::Start(const std::filesystem::path& logins) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe can be made for a development server");
    }
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    std::array<std::string, 7> arguments = {
        KV_DEVSQLSERVER, "--root", folder_ / "server", "--port", "0", "--logins", logins.string()};
    std::array<char*, 8> raw{};
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        raw[i] = arguments[i].data();
    }
    const int failed = posix_spawn(&process_, KV_DEVSQLSERVER, &actions, nullptr, raw.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    if (failed != 0) {
        process_ = 0;
    }
    return ends[0];
}

void DevServer::End(int signal_number) {
    if (process_ != 0) {
        kill(process_, signal_number);
        waitpid(process_, nullptr, 0);
        process_ = 0;
    }
}

void DevServer::Stop() {
    End(SIGTERM);
}

void DevServer::Kill() {
    End(SIGKILL);
}

DevServer::~DevServer() {
    Stop();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

} // namespace fakes
