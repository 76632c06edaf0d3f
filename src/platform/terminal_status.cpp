// Shows the progress of a run as lines on the terminal: one line for each text, with the position of the bar.
#include "platform/status_window.h"

#include <string>

#include "platform/terminal.h"

namespace platform {
namespace {

class TerminalStatus : public StatusWindow {
  public:
    explicit TerminalStatus(const std::string& caption) : caption_(caption) {}
    TerminalStatus(const TerminalStatus&) = delete;
    TerminalStatus& operator=(const TerminalStatus&) = delete;
    ~TerminalStatus() override {
        if (shown_) {
            WriteToTerminal(Position() + "Ended.\n");
        }
    }

    void SetBar(float /*min*/, float max, float value) override {
        max_ = static_cast<int>(max);
        value_ = static_cast<int>(value);
    }

    void SetLabel(const std::string& text) override {
        text_ = text;
        if (shown_) {
            WriteToTerminal(Position() + text_ + "\n");
        }
    }

    void Show() override {
        shown_ = true;
        WriteToTerminal(caption_ + "\n");
        if (!text_.empty()) {
            WriteToTerminal(Position() + text_ + "\n");
        }
    }

  private:
    std::string Position() const {
        const std::string max = std::to_string(max_);
        std::string value = std::to_string(value_);
        if (value.size() < max.size()) {
            value.insert(0, max.size() - value.size(), ' ');
        }
        return "[" + value + "/" + max + "] ";
    }

    std::string caption_;
    std::string text_;
    int max_ = 0;
    int value_ = 0;
    bool shown_ = false;
};

} // namespace

std::unique_ptr<StatusWindow> MakeTerminalStatus(const std::string& caption) {
    return std::make_unique<TerminalStatus>(caption);
}

} // namespace platform
