#include "companion/check/disk_space.hpp"
#include "tests/companion/check_runs.hpp"
#include "tests/companion/tool_runs.hpp"
#include "tests/support/data_set.hpp"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <utility>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using check_runs::Check;
using check_runs::findingsOf;
using check_runs::saysThatItEnds;
using sample_files::get;
using sample_files::makeProblem;
using sample_files::put;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using tool_runs::tool;

// Names, sizes, times and contents of all files.
std::map<std::string, std::string> folderState() {
    std::map<std::string, std::string> state;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(".")) {
        const auto time = fs::last_write_time(entry.path()).time_since_epoch().count();
        state[entry.path()] =
            std::to_string(time) + (entry.is_regular_file() ? get(entry.path()) : "");
    }
    return state;
}

// What a plot file shows: its size, the names of its variables, and for each zone its time and the
// variables that have values of their own.
struct Shown {
    std::int64_t bytes = 0;
    std::vector<std::string> variables;
    std::vector<std::string> times;
    std::vector<std::set<std::string>> written;
    bool operator==(const Shown&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Shown& shown) {
    out << shown.bytes << " bytes: " << testing::PrintToString(shown.variables);
    for (std::size_t z = 0; z < shown.times.size(); ++z)
        out << "\n" << shown.times[z] << ": " << testing::PrintToString(shown.written[z]);
    return out;
}

double timeOf(const std::string& text) {
    return std::stod(text);
}

Shown shownBy(const check::Report& report, const check::DomainReport& domain) {
    Shown shown{domain.bytes, {}, {}, {}};
    for (const check::VariableReport& variable : domain.variables)
        for (const std::string& name : variable.names) shown.variables.push_back(name);
    for (std::size_t t = 0; t < report.times.size(); ++t) {
        if (!report.times[t].isWritten) continue;
        shown.times.push_back(std::to_string(timeOf(report.times[t].text)));
        shown.written.emplace_back();
        for (const check::VariableReport& variable : domain.variables) {
            const bool isShared = variable.cells[t] == check::CellState::constant ||
                                  variable.cells[t] == check::CellState::missing;
            if (isShared && shown.times.size() > 1) continue;
            shown.written.back().insert(variable.names.begin(), variable.names.end());
        }
    }
    return shown;
}

Shown shownIn(const std::string& file) {
    const bool isText = file.ends_with(".dat");
    const data_set_file::DataSet set =
        isText ? data_set::parse(get(file)).set : data_set_file::read(file);
    Shown shown{static_cast<std::int64_t>(fs::file_size(file)), set.variables, {}, {}};
    for (const data_set_file::Zone& zone : set.zones) {
        shown.times.push_back(std::to_string(zone.time));
        shown.written.emplace_back();
        for (std::size_t v = 0; v < set.variables.size(); ++v)
            if (zone.shares[v] == 0) shown.written.back().insert(set.variables[v]);
    }
    return shown;
}

// The forecast is compared with what a run then writes.
TEST_F(Check, ForecastsARun) {
    struct Case {
        std::string name, options, control;
        std::vector<std::string> without; // files that are removed
    };
    const std::string times = "--nx 3 --ny 2 --layers 2 --times 3 ";
    const std::string every =
        "--domains pm,dual,olf,frac,chan,well,tile --variables all "
        "--species Nitrate,Heat:heat,Virus:particles,Calcite:immobile --hmc 2 ";
    const std::string all = "write pm domain file\nend\nwrite olf domain file\nend\n";
    const std::vector<Case> cases{
        {"defaults", times, "", {}},
        {"every", times + every + "--walls", "", {}},
        {"mixed", times + every + "--coupling mixed", "", {}},
        {"common", times + every + "--coupling common --generation older --elements prism", "", {}},
        {"binary", times + every + "--tensor", "tecplot binary mode\nend\n" + all, {}},
        {"many flushes",
         "--nx 2 --ny 2 --layers 1 --times 700 --variables head",
         "tecplot binary mode\nend\n" + all,
         {}},
        {"rare flushes",
         "--nx 2 --ny 2 --layers 1 --times 700 --variables head",
         "tecplot binary mode\ntecplot binary flush interval\n999\nend\n" + all,
         {}},
        {"binary and plots",
         times,
         "tecplot binary mode\nend\nplot pm zone isopach structure\n"
         "plot pm depth below ground surface\n" +
             all,
         {}},
        {"truncation and plots",
         times + "--coupling common",
         "end\nplot pm zone isopach structure\nplot pm depth below ground surface\n"
         "write olf domain file\ntruncate olf domain\n0 900\n0 900\n-1e9 1e9\nend\n",
         {}},
        {"missing files", times, "", {"to.head_pm.0002", "to.sat_pm.0003"}},
        {"window and truncation",
         times,
         "truncate time domain\n3600 1e9\nend\nwrite pm domain file\nno pm saturations\n"
         "truncate pm domain by layer\n-1e9 1e9\n-1e9 1e9\n2 2\nend\n",
         {}},
        {"pm only read",
         times + every + "--coupling common",
         "simulation time unit conversion factor\nend\nsimulation time unit conversion factor\n"
         "10 0.5\nwrite olf domain file\nend\n",
         {"to.head_pm.0002"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        fs::create_directory(c.name);
        fs::current_path(c.name);
        makeProblem(c.options);
        if (!c.control.empty()) put("t.plot.control", c.control);
        for (const std::string& file : c.without) fs::remove(file);
        const check::Report report = check::examine(".");
        EXPECT_EQ(runs::runHere().status, 0);
        for (const check::DomainReport& domain : report.domains) {
            if (domain.dataSet.empty()) continue;
            SCOPED_TRACE(domain.dataSet);
            EXPECT_EQ(shownBy(report, domain), shownIn(domain.dataSet));
        }
        for (const check::PlotReport& plot : report.plots)
            EXPECT_EQ(plot.bytes, static_cast<std::int64_t>(fs::file_size(plot.file)));
        EXPECT_EQ(report.plots.size(), c.name.ends_with("and plots") ? 2U : 0U);
        fs::current_path("..");
    }
}

TEST_F(Check, ChangesNothing) {
    makeProblem("--nx 2 --ny 2 --layers 2 --times 2 --variables all --hmc 2");
    put("t.plot.control",
        "tecplot binary mode\nend\nwrite pm domain file\ncompare heads 3d domain\n"
        "-9 9\n-9 9\n-9 9\nend\n");
    const auto before = folderState();
    check::examine(".");
    EXPECT_EQ(folderState(), before);
}

TEST_F(Check, PrintsTextAndJson) {
    makeProblem("--nx 2 --ny 2 --layers 2 --times 3 --variables head,sat");
    fs::rename("to.sat_pm.0002", "to.stat_pm.0002");
    put("t.plot.control", "truncate time domain\n0 4000\n\x1b[1m\xff\nend\nwrite pm domain file\n"
                          "no pm pressure heads\nend\n");
    const runs::Ran text = tool({"check"});
    EXPECT_EQ(text.status, 1);
    EXPECT_THAT(text.screen, HasSubstr("Problem t: Hill slope catchment with a stream\n"));
    EXPECT_THAT(text.screen, HasSubstr("\n  write pm domain file\n    no pm pressure heads\n"));
    EXPECT_THAT(text.screen, HasSubstr("\n3 output times, 2 in the time window:\n  0001: 0.0  "
                                       "0002: 3600.0  (0003: 7200.0)\n"));
    EXPECT_THAT(text.screen, HasSubstr("pm         27         8             2  "));
    EXPECT_THAT(text.screen, HasSubstr("\n  Head           real8 node      ++\n"
                                       "  Sat            real4 node      +-\n"));
    EXPECT_THAT(text.screen, HasSubstr("\nResult files that no variable reads:\n  to.stat_pm\n"));
    EXPECT_THAT(text.screen,
                HasSubstr("\n2 findings:\n  t.plot.control:3: \"\\x1b[1m\xff\" is not "));
    EXPECT_THAT(text.screen, HasSubstr("\n  time 2: to.sat_pm: no file, so pm would show Sat of "
                                       "time 0001.\n"));

    const runs::Ran printed = tool({"check", "--json", "."});
    EXPECT_EQ(printed.status, 1);
    const auto json = nlohmann::json::parse(printed.screen);
    EXPECT_EQ(json["findings"][0]["line"], 3);
    EXPECT_EQ(json["findings"][1]["times"], std::vector<int>{2});
    EXPECT_EQ(json["times"][2]["written"], false);
    const auto& variables = json["domains"][0]["variables"];
    EXPECT_EQ(variables.back()["names"], (std::vector<std::string>{"Depth2GWT2D"}));
    EXPECT_EQ(variables[6]["states"],
              (std::vector<std::string>{"present", "missing", "not_written"}));
    EXPECT_EQ(printed.screen.find('\x1b'), std::string::npos);

    fs::remove("t.plot.control");
    fs::rename("to.stat_pm.0002", "to.sat_pm.0002");
    fs::create_directory("t"); // the prefix is meant all the same
    EXPECT_EQ(tool({"check", "t"}).status, 0);
    fs::remove("t");
    fs::remove("batch.pfx");
    EXPECT_THAT(tool({"check"}).screen, HasSubstr("\n1 finding:\n  batch.pfx: "));
    fs::remove("t.skiv");
    EXPECT_EQ(tool({"check", ".", "t"}).status, 2);
    runs::expectFailure(tool({"check"}), {"batch.pfx names no problem"});
    runs::expectFailure(tool({"check", "t"}), {"neither a folder nor the prefix of a problem"});
}

TEST(TextOfReport, SignsAndTimes) {
    using enum check::CellState;
    check::Report report;
    for (const std::int32_t index : {1, 2, 3}) report.times.push_back({.index = index});
    const auto variable = [](const std::string& name, const std::string& type) {
        return check::VariableReport{
            .names = {name}, .type = type, .cells = {present, missing, present}};
    };
    report.domains = {{.tag = "pm"}};
    report.domains[0].variables = {variable("S\xc3\xbc\xc3\x9f", "real8"), variable("B", "int4")};
    EXPECT_THAT(check::textOf(report), HasSubstr("\n                       123\n"
                                                 "  S\xc3\xbc\xc3\x9f  real8 node      +-+\n"
                                                 "  B    int4 node       +-+\n"));
    check::Finding finding{.file = "f", .text = "x"};
    for (std::int32_t index = 0; index < 100; ++index) finding.times.push_back(5 * index);
    report.findings = {finding};
    EXPECT_THAT(check::textOf(report), HasSubstr("  times 0, 5, 10, "));
    EXPECT_THAT(check::textOf(report), HasSubstr(", 95, ... (100 in all): f: x.\n"));
}

// A folder with files that can be opened by their names, but not listed.
TEST_F(Check, ReportsAFolderThatCannotBeListed) {
    makeProblem("--nx 2 --ny 2 --layers 1 --times 1");
    const auto asOtherUser = [](const std::function<runs::Ran()>& call) {
        constexpr unsigned nobody = 65534;
        const bool isRoot = ::geteuid() == 0; // who can list all folders
        fs::permissions(".", fs::perms{0311});
        EXPECT_TRUE(!isRoot || ::seteuid(nobody) == 0);
        const runs::Ran ran = call();
        EXPECT_TRUE(!isRoot || ::seteuid(0) == 0);
        fs::permissions(".", fs::perms{0700});
        return ran;
    };
    const runs::Ran listed = asOtherUser([] { return tool({"check"}); });
    EXPECT_THAT(listed.screen,
                HasSubstr("\n1 finding:\n  .: it cannot be listed: Permission denied"));
    EXPECT_EQ(listed.status, 1);
    fs::remove("batch.pfx");
    runs::expectFailure(asOtherUser([] { return tool({"check"}); }),
                        {".: it cannot be listed: Permission denied"});
    fs::create_symlink("loop.skiv", "loop.skiv");
    fs::create_symlink("loop", "loop");
    for (const char* problem : {"loop", "./loop"})
        runs::expectFailure(tool({"check", problem}), {problem, "Too many levels"});
}

// The files of a small problem, each damaged in several ways: a run ends exactly if a finding says
// so.
TEST_F(Check, AgreesWithRunsOverDamagedFiles) {
    const sample_files::Problem problem = sample_files::twoTimes();
    int endings = 0;
    const std::vector<std::pair<std::string, std::function<void(std::string&)>>> damages{
        {"empty", [](std::string& bytes) { bytes.clear(); }},
        {"half", [](std::string& bytes) { bytes.resize(bytes.size() / 2); }},
        {"last byte", [](std::string& bytes) { bytes.pop_back(); }},
        {"first length", [](std::string& bytes) { bytes[1] = '\x7f'; }},
        {"negative", [](std::string& bytes) { bytes.replace(4, 4, 4, '\xff'); }},
        {"middle", [](std::string& bytes) { bytes.replace(bytes.size() / 2, 4, 4, '\x7f'); }},
        {"foreign", [](std::string& bytes) { bytes = "\x1b[2J not a file of the simulator\n"; }},
    };
    for (const auto& [name, contents] : problem) {
        if (name.ends_with(".skiv") || contents.size() < 9) continue;
        for (const auto& [damage, apply] : damages) {
            SCOPED_TRACE(name + ": " + damage);
            fs::create_directory("case");
            fs::current_path("case");
            sample_files::Problem damaged = problem;
            apply(damaged[name]);
            sample_files::write(damaged);
            const check::Report report = check::examine("t");
            const bool ends = saysThatItEnds(report);
            endings += ends;
            const runs::Ran ran = runs::runHere();
            EXPECT_EQ(ran.status, ends ? 1 : 0)
                << ran.errors << testing::PrintToString(findingsOf(report));
            fs::current_path("..");
            fs::remove_all("case");
        }
    }
    EXPECT_GT(endings, 20);
}

TEST_F(Check, ComparesWithTheFreeSpace) {
    makeProblem("--nx 2 --ny 2 --layers 2 --times 1");
    const auto before =
        std::exchange(check::freeBytes, [](const std::string&) { return std::int64_t{1000}; });
    EXPECT_THAT(findingsOf(check::examine(".")), ElementsAre(HasSubstr("disk_full ! ")));
    EXPECT_EQ(runs::runHere().status, 0);
    EXPECT_THAT(findingsOf(check::examine(".")), IsEmpty()) << "the files are replaced";
    check::freeBytes = before;
}

} // namespace
