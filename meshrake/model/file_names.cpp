#include "meshrake/model/file_names.hpp"

#include "meshrake/model/run_state.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/utils.hpp"

namespace model {

std::string fileName(std::string_view text) {
    return std::string(StringHelpers::trimRight(text));
}

std::string problemFile(std::string_view rest) {
    return fileName(run.problemPrefix + "o." + std::string(rest));
}

std::string outputTimeIndex(std::int32_t index) {
    const std::string digits = utils::zeroPaddedIntString(index, 10);
    return digits.substr(digits.size() - static_cast<std::size_t>(run.suffixDigits));
}

} // namespace model
