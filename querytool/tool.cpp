// The loop that collects lines to batches and runs them.
#include "querytool/tool.h"

#include <charconv>
#include <memory>
#include <optional>

#include "platform/files.h"
#include "querytool/result_printer.h"

namespace querytool {
namespace {

LoginSettings LoginOf(const Switches& switches, const std::string& password) {
    LoginSettings login;
    login.server = switches.server;
    login.user = switches.user.value_or("");
    login.password = password;
    login.database = switches.database;
    login.workstation = switches.workstation;
    login.login_timeout = switches.login_timeout;
    login.query_timeout = switches.query_timeout;
    login.packet_size = switches.packet_size;
    return login;
}

/// Runs the batches of the input, until the input ends or a command or an error ends the tool.
class BatchLoop {
  public:
    /// All arguments must outlive this object.
    BatchLoop(const Switches& switches, Server& server, Output& output)
        : switches_(switches), server_(server), output_(output), printer_(switches, output) {}

    /// Connects. Returns false if the tool must end.
    bool Login(const std::string& password) {
        const bool connected = server_.Connect(LoginOf(switches_, password), printer_);
        printer_.ForgetErrors();
        if (!connected) {
            exit_code_ = kFailed;
            return false;
        }
        // Scripts for this tool enclose strings in double quotes, whatever option the driver sets on the
        // server.
        return switches_.quoted_identifiers || RunBatch("SET QUOTED_IDENTIFIER OFF");
    }

    /// Runs a batch and prints its results. Returns false if the tool must end.
    bool RunBatch(const std::string& batch) {
        printer_.ForgetErrors();
        if (!server_.Run(batch, printer_) && !printer_.Ended()) {
            output_.Write("The connection to the server is lost.\n");
            exit_code_ = kFailed;
            return false;
        }
        output_.Flush();
        if (printer_.Ended()) {
            exit_code_ = *printer_.EndingNumber();
            return false;
        }
        if (switches_.stop_on_error && printer_.ErrorSeen()) {
            exit_code_ = kFailed;
            return false;
        }
        return true;
    }

    /// Reads the lines, and runs their batches.
    void RunLines(LineSource& lines) {
        Prompt();
        while (const auto line = lines.Next()) {
            if (switches_.echo) {
                output_.Write(*line);
            }
            if (!TakeLine(*line)) {
                return;
            }
            Prompt();
        }
        if (!batch_.empty()) { // the last batch needs no GO
            RunBatch(batch_);
        }
    }

    int ExitCode() const { return exit_code_; }

  private:
    void Prompt() {
        if (!switches_.no_prompts) {
            output_.Write(std::to_string(line_number_) + "> ");
        }
    }

    void Reset() {
        batch_.clear();
        lexer_.Reset();
        line_number_ = 1;
    }

    /// Adds the line to the batch or does what the command says. Returns false if the tool must end.
    bool TakeLine(std::string_view line) {
        const LineMeaning meaning =
            lexer_.NextMayBeCommand() ? ClassifyLine(line, switches_.terminator) : LineMeaning{};
        switch (meaning.kind) {
        case LineKind::Text:
            batch_ += line;
            lexer_.Advance(line);
            ++line_number_;
            return true;
        case LineKind::Run:
            return RunCollected(meaning.count);
        case LineKind::Reset:
            Reset();
            return true;
        case LineKind::Refused:
            output_.Write("The command '" + std::string(meaning.text) + "' is not supported.\n");
            exit_code_ = kFailed;
            return true;
        case LineKind::ExitRun:
            RunLast(meaning.text);
            return false;
        case LineKind::Quit:
            break;
        }
        return false;
    }

    /// Runs the batch `count` times and begins a new one. Returns false if the tool must end.
    bool RunCollected(unsigned count) {
        bool goes_on = true;
        for (unsigned i = 0; i < count && goes_on && !batch_.empty(); ++i) {
            goes_on = RunBatch(batch_);
        }
        Reset();
        return goes_on;
    }

    /// Runs the batch with the query of EXIT(query). The first value of the last result becomes the exit
    /// code.
    void RunLast(std::string_view query) {
        batch_ += query;
        if (batch_.empty() || !RunBatch(batch_) || query.empty()) {
            return;
        }
        const std::string& value = printer_.FirstValue();
        int code = kSuccess;
        std::from_chars(value.data(), value.data() + value.size(), code);
        exit_code_ = code;
    }

    const Switches& switches_;
    Server& server_;
    Output& output_;
    ResultPrinter printer_;
    std::string batch_;
    BatchLexer lexer_;
    unsigned line_number_ = 1;
    int exit_code_ = kSuccess;
};

} // namespace

int RunTool(const Switches& switches, const std::string& password, Server& server, LineSource& standard_input,
            Output& output) {
    std::unique_ptr<TextLines> script;
    if (!switches.input_file.empty()) {
        try {
            script = std::make_unique<TextLines>(ToCodePage(platform::ReadWholeFile(switches.input_file)));
        } catch (const platform::FileError& error) {
            output.Write("The input file can't be read: " + std::string(error.what()) + "\n");
            return kFailed;
        }
    }
    BatchLoop loop(switches, server, output);
    if (!loop.Login(password)) {
        return loop.ExitCode();
    }
    const bool goes_on = !switches.query || loop.RunBatch(*switches.query);
    if (goes_on && !switches.exit_after_query) {
        loop.RunLines(script ? static_cast<LineSource&>(*script) : standard_input);
    }
    return loop.ExitCode();
}

} // namespace querytool
