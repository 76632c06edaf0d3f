// The errors and messages that the last call on a connection left, as ADO presents them. Plain data: knows no
// driver and no program above.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace ado {

/// One error or message; a message that came with success has the number 0.
struct Error {
    std::int32_t Number = 0;
    std::string Description;
    std::string Source;
    std::int32_t NativeError = 0;
    std::string SQLState;
};

/// The collection of a connection, in the order in which the driver ranks its records.
class Errors {
  public:
    Errors() = default;
    explicit Errors(std::vector<Error> errors) : errors_(std::move(errors)) {}

    std::int32_t Count() const { return static_cast<std::int32_t>(errors_.size()); }

    /// The first has the index 0. Throws std::out_of_range for an index that is none.
    const Error& Item(std::int16_t index) const {
        if (index < 0 || index >= Count()) {
            throw std::out_of_range("Item cannot be found in the collection corresponding to the requested "
                                    "name or ordinal.");
        }
        return errors_[static_cast<std::size_t>(index)];
    }

    void Append(Error error) { errors_.push_back(std::move(error)); }
    void Clear() { errors_.clear(); }

  private:
    std::vector<Error> errors_;
};

} // namespace ado
