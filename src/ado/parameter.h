// The parameters of a stored procedure, with the interface of ADO. Knows no driver.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "ado/variant.h"

namespace ado {

/// The values of Parameter::Direction.
enum ParameterDirection : std::int32_t {
    adParamUnknown = 0, ///< the server's catalogue does not give the direction
    adParamInput = 1,
    adParamOutput = 2,
    adParamInputOutput = 3,
    adParamReturnValue = 4,
};

/// The bits of Parameter::Attributes.
enum ParameterAttributes : std::int32_t {
    adParamSigned = 16,   ///< a number that may be negative
    adParamNullable = 64, ///< NULL is accepted
    adParamLong = 128,    ///< long text or binary data
};

/// One parameter. It refers to no command and may outlive its command. The value is kept as it was assigned,
/// and converted to the parameter's type when the command runs.
class Parameter {
  public:
    std::int32_t Attributes() const { return attributes_; }
    void Attributes(std::int32_t value) { attributes_ = value; }
    std::int32_t Direction() const { return direction_; }
    void Direction(std::int32_t value) { direction_ = value; }
    const std::string& Name() const { return name_; }
    void Name(const std::string& value) { name_ = value; }
    /// The number of digits after the decimal point.
    std::uint8_t NumericScale() const { return numeric_scale_; }
    void NumericScale(std::uint8_t value) { numeric_scale_ = value; }
    /// The server's name for the type; empty if it is not known. Type has one number for several types.
    const std::string& ServerType() const { return server_type_; }
    void ServerType(const std::string& value) { server_type_ = value; }
    /// The number of all digits.
    std::uint8_t Precision() const { return precision_; }
    void Precision(std::uint8_t value) { precision_ = value; }
    /// The largest number of characters or bytes; 0 for types whose size does not vary.
    std::int32_t Size() const { return size_; }
    void Size(std::int32_t value) { size_ = value; }
    /// A DataType of ado_types.h.
    std::int32_t Type() const { return type_; }
    void Type(std::int32_t value) { type_ = value; }
    /// An input parameter whose value is Empty is left out of the call, so that the procedure's default
    /// applies. For an input/output parameter, Empty is passed as NULL.
    const Variant& Value() const { return value_; }
    void Value(Variant value) { value_ = std::move(value); }

  private:
    std::int32_t attributes_ = 0;
    std::int32_t direction_ = adParamInput;
    std::string name_;
    std::uint8_t numeric_scale_ = 0;
    std::uint8_t precision_ = 0;
    std::string server_type_;
    std::int32_t size_ = 0;
    std::int32_t type_ = 0;
    Variant value_;
};

class Command;

/// The parameters of a command, in the order of the server's catalogue, the return value first.
class Parameters {
  public:
    std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
    /// Returns a parameter. The first has the index 0. The reference is valid until the next Refresh. Throws
    /// CallError with kItemNotFound for an index outside the collection.
    Parameter& Item(std::int32_t index);
    /// Asks the server for the parameters of the command's procedure and rebuilds the collection from its
    /// answer. If the previous collection was of the same procedure, each parameter takes over the value of
    /// the previous one with the same name. The values of all other parameters are Empty. If the server does
    /// not know the procedure, the collection is empty. Throws CallError; the collection is then empty too.
    void Refresh();

  private:
    friend class Command;
    explicit Parameters(const Command& command) : command_(&command) {}

    /// Empties the collection and returns its items.
    std::vector<Parameter> Take();
    /// Fills the empty collection. `before` has the previous parameters, whose values are taken over.
    void Fill(std::vector<Parameter> items, const std::vector<Parameter>& before);

    const Command* command_; ///< the owner of this collection
    std::vector<Parameter> items_;
    std::string procedure_; ///< the command's text when `items_` was read
};

} // namespace ado
