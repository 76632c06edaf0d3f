// Where the tool writes: the standard output and error, or a file that exists from the first moment on, so
// that it tells also why nothing else came.
#pragma once

#include <string>
#include <string_view>

namespace querytool {

class Output {
  public:
    virtual ~Output() = default;
    /// Lines end in "\n".
    virtual void Write(std::string_view text) = 0;
    /// Errors and messages that -r sends the other way.
    virtual void WriteError(std::string_view text) = 0;
    /// Hands over what was written so far.
    virtual void Flush() = 0;
};

class StandardOutput : public Output {
  public:
    void Write(std::string_view text) override;
    void WriteError(std::string_view text) override;
    void Flush() override;
};

/// A file of 8-bit text whose lines end in CR LF.
class FileOutput : public Output {
  public:
    /// Makes the file or cuts it to nothing. Throws platform::FileError, as the other members do.
    explicit FileOutput(std::string path);
    void Write(std::string_view text) override;
    void WriteError(std::string_view text) override;
    void Flush() override;

  private:
    std::string path_;
    std::string pending_;
};

} // namespace querytool
