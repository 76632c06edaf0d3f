// A visitor for std::visit, made of one function for each alternative.
#pragma once

namespace devsql {

template <class... Handlers>
struct Overloaded : Handlers... {
    using Handlers::operator()...;
};
template <class... Handlers>
Overloaded(Handlers...) -> Overloaded<Handlers...>;

} // namespace devsql
