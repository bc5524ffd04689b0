#include "meshrake/model/result_files.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/free_form.hpp"
#include "tvncommon/text/number_formats.hpp"

#include <cmath>
#include <limits>

namespace model {

namespace {

// Kinds of result files whose header has the time of the output, in the order of the search.
constexpr std::string_view timeFileTable[] = {
    "conc_chem",
    "conc_dual",
    "conc_frac",
    "conc_olf",
    "conc_pm",
    "concsolid_pm",
    "concsolid_dual",
    "redox",
    "head_chan",
    "head_dual",
    "head_frac",
    "head_olf",
    "head_pm",
    "head_tile",
    "head_well",
    "DeltaZ_pm",
    "DualExchSolAdv_olf",
    "DualExchSolDisp_olf",
    "envhead_pm",
    "ETEvap_olf",
    "ETPmEvap_olf",
    "ETPmTranspire_olf",
    "ETActual_olf",
    "ExchFlux_chan",
    "ExchFlux_frac",
    "Exchflux_olf",
    "ExchFlux_tile",
    "ExchFlux_well",
    "ExchFlux_pm2_chan",
    "ExchFlux_olf2_chan",
    "ExchSolAdv_frac",
    "ExchSolAdv_olf",
    "ExchSolDisp_frac",
    "ExchSolDisp_olf",
    "ice_sat_dual",
    "ice_sat_pm",
    "liquid_p",
    "lp_chan",
    "lp_frac",
    "lp_olf",
    "lp_pm",
    "permafrost_frac",
    "permafrost_pm",
    "pet_olf",
    "por_pm",
    "q_dual",
    "q_pm",
    "rain_olf",
    "rate_pm",
    "sat_dual",
    "sat_frac",
    "sat_pm",
    "snowcover",
    "snowdepth",
    "snowmelt",
    "soilfrost_pm",
    "solid_pm",
    "tvk_pm",
    "v_dual",
    "v_frac",
    "v_olf",
    "v_pm",
    "hmc_pm.hmc_error",
    "hmc_olf.hmc_error",
    "friction_olf",
    "freeze_thaw_temp",
};

// Returns the file name for the stem, empty if the problem cannot have such a file.
std::string timeFileName(std::string_view stem, std::string_view suffix) {
    const std::string kind(stem);
    const std::string end(suffix);
    if (stem.starts_with("conc") || stem.starts_with("redox")) {
        if (run.speciesNames.empty()) return "";
        const std::string& species = run.speciesNames.front();
        return stem.starts_with("conc") ? problemFile(kind + "." + species + end)
                                        : problemFile("conc_pm." + species + "-Redox" + end);
    }
    if (stem.starts_with("hmc")) return fileName("./hmc/" + run.problemPrefix + "o." + kind + end);
    return problemFile(kind + end);
}

// Tries the kind of file that was found last, which usually also exists at the next output time.
// Returns its header, or an empty text if it does not exist.
std::string headerOfSameKind(std::string_view suffix) {
    const std::size_t point = run.timeFile.rfind('.');
    if (point == std::string::npos)
        error::fatalError("File extension not found for file: " + run.timeFile);
    const std::string name = fileName(run.timeFile.substr(0, point) + std::string(suffix));
    std::string header = TVNBinaryFile::readHeaderIfExists(name);
    if (!header.empty()) run.timeFile = name;
    return header;
}

// Finds a result file with this suffix, puts its name into `run.timeFile` and returns its header.
// Returns an empty text if no such file exists.
std::string headerOfTimeFile(std::string_view suffix) {
    std::string header;
    if (run.timeFileKnown) header = headerOfSameKind(suffix);
    if (!header.empty()) return header;
    run.timeFileKnown = false;
    for (const std::string_view stem : timeFileTable) {
        const std::string name = timeFileName(stem, suffix);
        if (name.empty()) continue;
        header = TVNBinaryFile::readHeaderIfExists(name);
        if (header.empty()) continue;
        run.timeFile = name;
        run.timeFileKnown = true;
        break;
    }
    return header;
}

std::string convertedTime(const std::string& timestamp) {
    const double scaled = timeOf(timestamp) * run.timeUnitFactor;
    return " " + number_formats::wideRealText(scaled + run.timeUnitOffset);
}

} // namespace

bool findTimeFile(std::string_view suffix) {
    return !headerOfTimeFile(suffix).empty();
}

void getTimestamp(std::string_view suffix, bool& found) {
    run.currentTimeText = "0.0";
    const std::string text = headerOfTimeFile(suffix);
    found = !text.empty();
    if (!found) return;
    const TVNBinaryFile::BinaryHeader header =
        TVNBinaryFile::parseTVNBinFileHeader(text, run.timeFile);
    run.currentTimeText = run.timeConversion ? convertedTime(header.timestamp) : header.timestamp;
    run.currentTimeText = StringHelpers::cut(run.currentTimeText, 60);
}

double timeOf(std::string_view timestamp) {
    // A free-form read of "/" succeeds and does not change the value.
    double time = std::numeric_limits<double>::quiet_NaN();
    int status = free_form::readReal(timestamp, time);
    if (status == io_layer::ok && !std::isfinite(time)) status = io_layer::invalidData;
    if (status != io_layer::ok)
        error::input_error_stat(status, "Error reading file: " + run.timeFile +
                                            "\nThe time stamp is not a number: " +
                                            std::string(StringHelpers::trimRight(timestamp)));
    return time;
}

double currentTime() {
    return timeOf(run.currentTimeText);
}

bool inTimeWindow() {
    const double time = currentTime();
    return !(time < run.timeWindowMin || time > run.timeWindowMax);
}

} // namespace model
