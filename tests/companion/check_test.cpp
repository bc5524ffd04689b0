#include "companion/check/check.hpp"

#include "tests/companion/tool_runs.hpp"
#include "tests/support/text_data_set.hpp"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <set>

namespace {

namespace fs = std::filesystem;
using sample_files::get;
using sample_files::makeProblem;
using sample_files::put;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using tool_runs::tool;

// Findings as "kind file:line times text", with an exclamation mark if they end the run.
std::vector<std::string> findingsOf(const check::Report& report) {
    std::vector<std::string> lines;
    for (const check::Finding& finding : report.findings) {
        std::string line = std::string(finding.kind) + " " + finding.file;
        if (finding.line > 0) line += ":" + std::to_string(finding.line);
        for (const std::int32_t time : finding.times) line += " " + std::to_string(time);
        lines.push_back(line + (finding.endsRun ? "! " : " ") + finding.text);
    }
    return lines;
}

std::vector<std::string> findings() {
    return findingsOf(check::examine("."));
}

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
        isText ? text_data_set::parse(get(file)).set : data_set_file::read(file);
    Shown shown{static_cast<std::int64_t>(fs::file_size(file)), set.variables, {}, {}};
    for (const data_set_file::Zone& zone : set.zones) {
        shown.times.push_back(std::to_string(zone.time));
        shown.written.emplace_back();
        for (std::size_t v = 0; v < set.variables.size(); ++v)
            if (zone.shares[v] == 0) shown.written.back().insert(set.variables[v]);
    }
    return shown;
}

struct Check : testing::Test {
    sample_files::Folder folder;
};

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

// A problem, what is changed in it, and all findings in their order.
struct Fault {
    std::string name;
    std::function<void()> change;
    std::vector<std::string> findings;
};

void expectFindings(const std::vector<Fault>& faults) {
    for (const auto& [name, change, expected] : faults) {
        SCOPED_TRACE(name);
        fs::create_directory("case");
        fs::current_path("case");
        makeProblem("--nx 2 --ny 2 --layers 2 --times 3 --variables head,sat,v,Rain");
        change();
        EXPECT_EQ(findings(), expected);
        fs::current_path("..");
        fs::remove_all("case");
    }
}

void control(const std::string& text) {
    put("t.plot.control", text);
}

const std::string blocks = "write pm domain file\nend\nwrite olf domain file\nend\n";
const std::string here = "t.plot.control:";

TEST_F(Check, FindsFaultsOfTheControlFile) {
    expectFindings({
        {"none", [] { control("tecplot mode\nend\n" + blocks); }, {}},
        {"misspelt instructions",
         [] {
             control("! comment\n\ntruncate tme domain\n0 1\nend\nwrite pm domain file\n"
                     "no pm hedas\nno olf heads\nend\nwrite olv domain file\nno olf heads\nend\n"
                     "nonsense\n");
         },
         {"unknown_instruction t.plot.control:3 \"truncate tme domain\" is not an instruction of "
          "the first section and is skipped; the nearest instruction is \"truncate time domain\"",
          "unknown_instruction t.plot.control:4 \"0 1\" is not an instruction of the first section "
          "and is skipped",
          "unknown_instruction t.plot.control:7 \"no pm hedas\" is not an instruction of the block "
          "\"write pm domain file\" and is skipped; the nearest instruction is \"no pm heads\"",
          "unknown_instruction t.plot.control:8 \"no olf heads\" is not an instruction of the "
          "block \"write pm domain file\" and is skipped: it belongs in a block \"write olf domain "
          "file\"",
          "unknown_instruction t.plot.control:10 \"write olv domain file\" is outside of all "
          "blocks and is skipped; the nearest instruction is \"write olf domain file\"",
          "unknown_instruction t.plot.control:13 \"nonsense\" is outside of all blocks and is "
          "skipped"}},
        {"no end of the first section",
         [] { control("tecplot mode\n" + blocks); },
         {"no_end t.plot.control:2 the first section has no \"end\" before this line, so the block "
          "is not found"}},
        {"no end at all",
         [] { control("tecplot mode\n"); },
         {"no_end t.plot.control:1 the first section has no \"end\", so no domain is written"}},
        {"block without end",
         [] { control("end\nwrite pm domain file\nno pm heads\nwrite olf domain file\nend\n"); },
         {"no_end t.plot.control:4 the block \"write pm domain file\" has no \"end\" before this "
          "line"}},
        {"other domains",
         [] {
             control("end\n" + blocks +
                     "write chan domain file\nno chan heads\nend\n"
                     "write pm domain file\nno pm heads\nend\nno pm heads\nwrite time series file\n"
                     "end\n");
         },
         {"no_such_domain t.plot.control:6 the problem has no domain chan, so the block is skipped",
          "second_block t.plot.control:9 an earlier block is that of the domain, so this one is "
          "skipped",
          "unknown_instruction t.plot.control:12 \"no pm heads\" is outside of all blocks and is "
          "skipped: it belongs in a block \"write pm domain file\""}},
        {"values",
         [] {
             control("truncate time domain\nnumber of digits for output file suffix\nx\nend\n"
                     "write pm domain file\ntruncate pm domain\n1 2\n3 y\n4 5\nno pm heads\nend\n"
                     "simulation time unit conversion factor\n");
         },
         {"value t.plot.control:2! \"number of digits for output file suffix\" is not a value of "
          "\"truncate time domain\"",
          "value t.plot.control:3! \"x\" is not a value of \"number of digits for output file "
          "suffix\"",
          "value t.plot.control:8! \"3 y\" is not a value of \"truncate pm domain\"",
          "value t.plot.control:12! the values of \"simulation time unit conversion factor\" are "
          "missing"}},
        {"included file",
         [] {
             put("more", "tecplot mode\nbad line\n");
             control("include more\ninclude none\nend\n" + blocks);
         },
         {"include t.plot.control:2! the file \"none\" does not exist",
          "unknown_instruction more:2 \"bad line\" is not an instruction of the first section and "
          "is skipped"}},
        {"nothing inside",
         [] {
             control("truncate time domain\n-2 -1\nend\nwrite pm domain file\ntruncate pm domain\n"
                     "-2 -1\n-2 -1\n-2 -1\nend\n");
         },
         {"empty_time_window t.plot.control:1 no output time is in this time window, so no plot "
          "file is written"}},
        {"empty truncation",
         [] {
             control("end\nwrite pm domain file\ntruncate pm domain by layer\n-1e9 1e9\n-1e9 1e9\n"
                     "5 6\nend\n");
         },
         {"empty_truncation t.plot.control:3 no element of the domain pm is inside this "
          "truncation"}},
    });
}

// Replaces characters of a file.
void overwrite(const std::string& file, std::size_t at, const std::string& text) {
    std::string bytes = get(file);
    put(file, bytes.replace(at, text.size(), text));
}

void cut(const std::string& file, std::size_t size) {
    put(file, get(file).substr(0, size));
}

TEST_F(Check, FindsFaultsOfResultFiles) {
    const std::string sat = "to.sat_pm.0002", head = "to.head_olf.0002", v = "to.v_pm.0002";
    expectFindings({
        {"missing",
         [=] {
             fs::remove(sat);
             fs::remove(v);
         },
         {"missing_file to.sat_pm 2 no file, so pm would show Sat of time 0001",
          "missing_file to.v_pm 2 no file, so pm would show Vx, Vy, Vz of time 0001"}},
        {"too short",
         [=] { cut(sat, get(sat).size() - 10); },
         {"file_too_short to.sat_pm.0002 2! a record is cut off, or has two different lengths"}},
        {"fewer values",
         [=] { put(v, get("to.v_olf.0002")); },
         {"file_too_short to.v_pm.0002 2! it has 4 values, but 8 are read",
          "other_count to.v_pm.0002 2 its header names 4 values, but 8 are read"}},
        {"no header",
         [=] { cut(sat, 20); },
         {"malformed_header to.sat_pm.0002 2! it does not begin with a header of 80 characters"}},
        {"malformed header",
         [=] { overwrite(sat, 4, std::string(55, ' ')); },
         {"malformed_header to.sat_pm.0002 2 its header is malformed: Invalid binary file header "
          "format. Timestamp missing or malformed"}},
        {"malformed time",
         [=] { overwrite(head, 4, std::string(55, ' ')); },
         {"malformed_header to.head_olf.0002 2! its header is malformed: Invalid binary file "
          "header format. Timestamp missing or malformed"}},
        {"other type",
         [=] { overwrite(sat, 4 + 65, "R08"); },
         {"other_type to.sat_pm.0002 2 its header names values of type R08, but R04 is read"}},
        {"other components",
         [=] { overwrite(sat, 4 + 68, "03"); },
         {"other_components to.sat_pm.0002 2 its header names 3 components, but 1 is read"}},
        {"other count",
         [=] { overwrite(sat, 4 + 70, "0000000099"); },
         {"other_count to.sat_pm.0002 2 its header names 99 values, but 27 are read"}},
        {"other time",
         [=] { overwrite(sat, 4, "1800.0 "); },
         {"other_time to.sat_pm.0002 2 the time stamp of this file is 1800.0, but the run takes "
          "3600.0 from to.head_olf.0002"}},
        {"times that do not increase",
         [=] { overwrite(head, 4, "0.0    "); },
         {"other_time to.head_pm.0002 2 the time stamp of this file, and of 4 more, is 3600.0, but "
          "the run takes 0.0 from to.head_olf.0002",
          "time_order to.head_olf.0002 2 the time 0.0 is not after that of the output time before, "
          "0.0"}},
        {"a folder",
         [=] {
             fs::remove(sat);
             fs::create_directory(sat);
         },
         {"unreadable_file to.sat_pm.0002 2! it cannot be read: Unknown error encountered opening "
          "file"}},
        {"gap",
         [=] {
             for (const char* kind : {"head_pm", "head_olf", "sat_pm", "v_pm", "v_olf", "Rain_olf"})
                 fs::remove("to." + std::string(kind) + ".0002");
         },
         {"gap  2 this output time has no result files, so the plot files end before it",
          "after_gap  3 result files after the gap are not in the plot files"}},
        {"no time file",
         [=] {
             for (const char* kind : {"head_pm", "head_olf", "sat_pm", "v_pm", "v_olf"})
                 fs::remove("to." + std::string(kind) + ".0002");
         },
         {"no_time_file to.Rain_olf.0002 2 no file of this output time is of a kind from which a "
          "run takes the time, so the plot files end before it",
          "after_gap  3 result files after the gap are not in the plot files"}},
        {"late variable",
         [=] { fs::remove("to.sat_pm.0001"); },
         {"late_variable to.sat_pm 2 3 the files begin after the first output time, 0001, so the "
          "plot file of pm does not have Sat"}},
        {"not read",
         [=] { fs::rename("to.Rain_olf.0003", "to.Raim_olf.0003"); },
         {"missing_file to.Rain_olf 3 no file, so olf would show Rain of time 0001"}},
        {"no results",
         [=] {
             for (const fs::directory_entry& entry : fs::directory_iterator("."))
                 if (entry.path().string().find(".000") != std::string::npos) fs::remove(entry);
         },
         {"no_times  1 there are no result files of this output time, so the plot files have the "
          "mesh alone"}},
        {"damaged mesh",
         [=] { cut("to.coordinates_olf", 10); },
         {"mesh ! Error reading file: to.coordinates_olf (Error encountered during read "
          "statement)"}},
        {"damaged elements",
         [=] { cut("to.elements_pm", 40); },
         {"mesh ! Error reading file: to.elements_pm; More than the file can hold: 8 elements"}},
        {"damaged description",
         [=] { cut("to.gen", 100); },
         {"description ! Error reading file: to.gen; More than the file can hold: 2 title lines"}},
    });
}

} // namespace
