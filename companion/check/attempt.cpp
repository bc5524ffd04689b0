#include "companion/check/attempt.hpp"

#include "tvncommon/diagnostics/error.hpp"

#include <exception>
#include <new>

namespace check {

namespace {

constexpr std::string_view detail = "\nError detail: ";
constexpr std::string_view number = "\nError number: ";

// The status number is left out, its text is put in brackets.
std::string onOneLine(std::string message) {
    if (const std::size_t at = message.find(number); at != std::string::npos) message.resize(at);
    if (const std::size_t at = message.find(detail); at != std::string::npos)
        message = message.substr(0, at) + " (" + message.substr(at + detail.size()) + ")";
    std::string line;
    for (const char c : message) {
        if (c != '\n') {
            line += c;
        } else if (!line.empty()) {
            while (line.ends_with(' ')) line.pop_back();
            const bool ends = line.ends_with(':') || line.ends_with(',') || line.ends_with('.');
            line += ends ? " " : "; ";
        }
    }
    while (line.ends_with('.')) line.pop_back();
    return line;
}

} // namespace

Outcome attempt(const std::function<void()>& step) {
    Outcome outcome;
    std::vector<std::string> messages;
    std::vector<std::string>* const previous = error::collectMessages(&messages);
    try {
        step();
    } catch (const error::RunEnded&) {
        outcome.ended = true;
    } catch (...) {
        error::collectMessages(previous);
        throw;
    }
    error::collectMessages(previous);
    for (std::string& message : messages) outcome.messages.push_back(onOneLine(std::move(message)));
    return outcome;
}

} // namespace check
