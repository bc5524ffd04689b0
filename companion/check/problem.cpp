#include "companion/check/problem.hpp"

#include "companion/check/folder_names.hpp"
#include "meshrake/model/file_names.hpp"
#include "meshrake/model/problem_description.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/run/problem_prefix.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/text/StringHelpers.hpp"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace check {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view mark = ".skiv"; // <prefix>.skiv marks a problem

void enter(const fs::path& folder) {
    std::error_code failure;
    fs::current_path(folder, failure);
    if (failure) throw std::runtime_error(folder.string() + ": " + failure.message());
}

std::vector<std::string> problemsHere() {
    std::vector<std::string> prefixes;
    for (const std::string& name : namesIn("."))
        if (fs::path(name).extension() == mark) prefixes.push_back(fs::path(name).stem().string());
    std::ranges::sort(prefixes);
    return prefixes;
}

// The run would ask for the prefix. A folder with one problem leaves no doubt about the answer.
std::string onlyProblemHere(const std::string& folder) {
    const std::vector<std::string> found = problemsHere();
    if (found.size() == 1) return found.front();
    std::string message = folder + ": batch.pfx names no problem, and the folder has ";
    message += found.empty() ? "no file <prefix>.skiv" : "several:";
    for (const std::string& prefix : found) message += " " + prefix;
    throw std::runtime_error(message);
}

std::string prefixOfFolder(Work& work, const std::string& folder) {
    std::string prefix;
    bool good = false;
    const Outcome outcome = attempt([&] {
        good = run::readBatchFile(prefix) && file_units::exists(prefix + std::string(mark));
    });
    if (outcome.ended) throw std::runtime_error(folder + ": " + outcome.messages.back());
    if (good) return prefix;
    work.report.findings.push_back({.kind = "no_prefix",
                                    .file = "batch.pfx",
                                    .text = "it does not name a problem, so a run asks for the "
                                            "prefix"});
    return onlyProblemHere(folder);
}

// A run without pm ends at the links of another domain.
void reportMissingMesh(Work& work) {
    bool hasOther = false;
    for (const run::DomainEntry& entry : run::creationOrder)
        attempt([&] {
            hasOther |=
                file_units::exists(model::problemFile("coordinates_" + std::string(entry.tag)));
        });
    work.report.findings.push_back({.kind = "mesh",
                                    .file = model::problemFile("coordinates_pm"),
                                    .text = "the file is missing: a problem needs the domain pm",
                                    .endsRun = hasOther});
}

} // namespace

void findProblem(Work& work, const std::string& folderOrPrefix) {
    std::error_code failure;
    const fs::path given = folderOrPrefix.empty() ? "." : folderOrPrefix;
    const fs::file_status status = fs::status(given, failure);
    if (!fs::status_known(status))
        throw std::runtime_error(folderOrPrefix + ": " + failure.message());
    const bool isPrefix = fs::exists(given.string() + std::string(mark), failure);
    const bool isFolder = fs::is_directory(status) && !isPrefix;
    const fs::path folder = isFolder ? given : given.parent_path();
    if (!folder.empty()) enter(folder);
    work.report.folder = folder.empty() ? "." : folder.string();
    if (isFolder) {
        model::run.problemPrefix = prefixOfFolder(work, work.report.folder);
    } else {
        model::run.problemPrefix = given.filename().string();
        bool found = false;
        const Outcome outcome = attempt(
            [&] { found = file_units::exists(model::run.problemPrefix + std::string(mark)); });
        if (outcome.ended)
            throw std::runtime_error(folderOrPrefix + ": " + outcome.messages.back());
        if (!found)
            throw std::runtime_error(folderOrPrefix + ": neither a folder nor the prefix of a "
                                                      "problem, which has a file <prefix>.skiv");
    }
    work.report.prefix = model::run.problemPrefix;
}

void readProblem(Work& work) {
    const bool hasTitle = tryStep(work, {.kind = "description"}, model::titleRead);
    // The title names the plot files; without it the rest is examined with an empty one.
    if (!hasTitle || model::run.titleLines.empty()) model::run.titleLines.assign(1, "");
    work.report.title = StringHelpers::trimRight(model::run.titleLines.front());
    tryStep(work, {.kind = "description"}, model::speciesRead);
    tryStep(work, {.kind = "description"}, model::hmcFractionsRead);
    for (const run::DomainEntry& entry : run::creationOrder) {
        model::Domain& domain = work.domains.*entry.domain;
        const bool isPm = entry.domain == &run::Domains::pm;
        const bool good =
            tryStep(work, {.kind = "mesh"}, [&] { run::createDomain(work.domains, entry); });
        if (isPm) work.hasMesh = good && domain.exists;
        if (!good) {
            domain.exists = false;
            work.report.domains.push_back(
                {.tag = std::string(entry.tag), .remark = "its mesh cannot be read"});
        }
        if (isPm && !work.hasMesh) break;
    }
    if (!work.hasMesh && work.report.domains.empty()) reportMissingMesh(work);
}

} // namespace check
