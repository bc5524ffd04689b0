#include "tests/companion/check_runs.hpp"

#include <filesystem>
#include <functional>
#include <regex>

namespace {

namespace fs = std::filesystem;
using check_runs::findingsOf;
using check_runs::saysThatItEnds;
using sample_files::get;
using sample_files::makeProblem;
using sample_files::put;

struct CheckFindings : check_runs::Check {};

// A problem, what is changed in it, and all findings in their order. The run fails exactly if one
// of them says so.
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
        const check::Report report = check::examine(".");
        EXPECT_EQ(findingsOf(report), expected);
        EXPECT_EQ(runs::runHere().status, saysThatItEnds(report) ? 1 : 0);
        fs::current_path("..");
        fs::remove_all("case");
    }
}

void control(const std::string& text) {
    put("t.plot.control", text);
}

const std::string blocks = "write pm domain file\nend\nwrite olf domain file\nend\n";

TEST_F(CheckFindings, FindsFaultsOfTheControlFile) {
    expectFindings({
        {"none", [] { control("tecplot mode\nend\n" + blocks); }, {}},
        {"misspelt instructions",
         [] {
             control("! comment\n\ntruncate tme domain\n0 1\nend\nwrite pm domain file\n"
                     "no pm hedas\nno olf heads\nend\nwrite olv domain file\nno olf heads\nend\n"
                     "nonsense\nwrite pm domain file ! comment\n");
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
          "skipped",
          "unknown_instruction t.plot.control:14 \"write pm domain file ! comment\" is outside of "
          "all blocks and is skipped; the nearest instruction is \"write pm domain file\""}},
        {"no end of the first section",
         [] { control("tecplot mode\n" + blocks); },
         {"no_end t.plot.control:2 the first section has no \"end\" before this line, so the block "
          "is not found"}},
        {"no end at all",
         [] { control("tecplot mode\n"); },
         {"no_end t.plot.control:1 the first section has no \"end\", so no domain is written"}},
        {"no instruction",
         [] { control("! comment\n"); },
         {"no_end t.plot.control the file has no instruction, so no domain is written"}},
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
        {"variables that pm does not have",
         [] {
             makeProblem("--nx 2 --ny 2 --layers 2 --times 3 --coupling common");
             control("tecplot binary mode\nend\nwrite pm domain file\nno pm pressure heads\nend\n"
                     "write olf domain file\nend\n");
         },
         {"inconsistent_zone  1 2 3! olf: the zone has another number of values of Pressure Head "
          "than of nodes or elements"}},
        {"name of a variable with a comma",
         [] {
             makeProblem("--nx 2 --ny 2 --layers 2 --times 3 --variables head,conc --species A_");
             for (const std::string time : {"0001", "0002", "0003"})
                 fs::rename("to.conc_pm.A_." + time, "to.conc_pm.A,." + time);
             put("to.species", std::regex_replace(get("to.species"), std::regex("A_"), "A,"));
             control("tecplot binary mode\nend\nwrite pm domain file\nend\n");
         },
         {"domain  1! A variable of the pm domain has a comma in its name, which a binary plot "
          "file "
          "cannot hold: X,Y,Z,Zone,Layer Number,Column Number,Thickness,Head,Pressure Head,Sat,"
          "Depth2GWT,Depth2GWT2D,Vx,Vy,Vz,A,"}},
        {"files that cannot be replaced",
         [] {
             control("tecplot binary mode\nend\n" + blocks);
             fs::create_directory("to.pm.szplt");
             fs::create_directory("to.meshrake.eco");
         },
         {"damaged_data_set to.pm.szplt this data set of an earlier run cannot be read: Unknown "
          "error encountered opening file",
          "unwritable_file to.meshrake.eco! it cannot be replaced: Unknown error encountered "
          "opening "
          "file",
          "unwritable_file to.pm.szplt! it cannot be replaced: Unknown error encountered opening "
          "file"}},
        {"plot of a surface that does not exist",
         [] {
             fs::remove("to.coordinates_olf");
             control("end\nwrite pm domain file\nend\nplot pm zone isopach structure\n");
         },
         {"surface_plot ! The pm isopach plot divides by the nodes and elements of the olf domain, "
          "which has 0 nodes and 0 elements. File: to.coordinates_olf"}},
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

TEST_F(CheckFindings, FindsFaultsOfResultFiles) {
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
        {"time that is not a number",
         [=] {
             for (const std::string kind :
                  {"head_pm", "head_olf", "sat_pm", "v_pm", "v_olf", "Rain_olf"})
                 overwrite("to." + kind + ".0002", 4, "later  ");
         },
         {"invalid_time to.head_olf.0002 2 the time later is not a number, but would be "
          "written into the plot files"}},
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
        {"no results",
         [=] {
             for (const fs::directory_entry& entry : fs::directory_iterator("."))
                 if (entry.path().string().find(".000") != std::string::npos) fs::remove(entry);
         },
         {"no_times  1 there are no result files of this output time, so the plot files have the "
          "mesh alone"}},
        {"no results at the first output time",
         [=] {
             for (const fs::directory_entry& entry : fs::directory_iterator("."))
                 if (entry.path().string().ends_with(".0001")) fs::remove(entry);
         },
         {"no_times  1 there are no result files of this output time, so the plot files have the "
          "mesh alone",
          "after_gap  2 3 result files after the gap are not in the plot files"}},
        {"no mesh of pm",
         [=] { fs::remove("to.coordinates_pm"); },
         {"mesh to.coordinates_pm! the file is missing: a problem needs the domain pm"}},
        {"damaged mesh",
         [=] { cut("to.coordinates_olf", 10); },
         {"mesh ! Error reading file: to.coordinates_olf (Error encountered during read "
          "statement)"}},
        {"damaged description",
         [=] { cut("to.gen", 100); },
         {"description ! Error reading file: to.gen; More than the file can hold: 2 title lines"}},
    });
}

// Runs with a control file; the problem has its first two output times.
void runBefore(const std::string& text) {
    control(text);
    for (const fs::directory_entry& entry : fs::directory_iterator("."))
        if (entry.path().string().ends_with(".0003"))
            fs::rename(entry, entry.path().string() + ".later");
    EXPECT_EQ(runs::runHere().status, 0);
    for (const fs::directory_entry& entry : fs::directory_iterator("."))
        if (entry.path().extension() == ".later")
            fs::rename(entry, entry.path().parent_path() / entry.path().stem());
}

TEST_F(CheckFindings, FindsFaultsOfEarlierDataSets) {
    const std::string binary = "tecplot binary mode\nend\nwrite pm domain file\nend\n";
    const std::string append = "tecplot binary mode\ntecplot binary append\nend\n"
                               "write pm domain file\nend\n";
    const std::string pm = "to.pm.szplt";
    expectFindings({
        {"appended", [=] { runBefore(append); }, {}},
        {"unfinished",
         [=] {
             runBefore(append);
             control(binary);
         },
         {"unfinished_data_set to.pm.szplt an earlier run left this data set unfinished, with 2 "
          "output times up to 3600; this run replaces it"}},
        {"unfinished beside text",
         [=] {
             runBefore(append);
             control("end\nwrite pm domain file\nend\n");
         },
         {"unfinished_data_set to.pm.szplt an earlier run left this data set unfinished, with 2 "
          "output times up to 3600"}},
        {"damaged",
         [=] {
             runBefore(binary);
             cut(pm, 3000);
         },
         {"damaged_data_set to.pm.szplt this data set of an earlier run cannot be read: byte 3000: "
          "the file ends; this run replaces it"}},
        {"finished",
         [=] {
             runBefore(append);
             runBefore(binary);
             control(append);
         },
         {"finished_data_set to.pm.szplt! an earlier run finished this data set, so no output time "
          "can be appended"}},
        {"other variables",
         [=] {
             runBefore(append);
             control(append.substr(0, append.size() - 4) + "no pm heads\nend\n");
         },
         {"other_variables to.pm.szplt! this data set of an earlier run has other variables, so no "
          "output time can be appended"}},
        {"other mesh",
         [=] {
             runBefore(append);
             control(append.substr(0, append.size() - 4) +
                     "truncate pm domain by layer\n-1e9 1e9\n-1e9 1e9\n1 1\nend\n");
         },
         {"other_mesh to.pm.szplt! this data set of an earlier run has other nodes or elements, so "
          "no output time can be appended"}},
        {"damaged data set to append to",
         [=] {
             runBefore(append);
             cut(pm, 70000);
         },
         {"damaged_data_set to.pm.szplt! this data set of an earlier run is damaged, so no output "
          "time can be appended"}},
        {"damaged sidecar",
         [=] {
             runBefore(append);
             overwrite(pm + ".szhdr", 30, "x");
         },
         {"damaged_data_set to.pm.szplt! the file to.pm.szplt.szhdr of an earlier run is damaged, "
          "so no output time can be appended"}},
        {"missing",
         [=] {
             runBefore(append);
             fs::remove(pm);
         },
         {"missing_data_set to.pm.szplt there is no such data set of an earlier run, so its output "
          "times before 3 will be missing"}},
        {"nothing to append",
         [=] {
             runBefore(append);
             EXPECT_EQ(runs::runHere().status, 0);
         },
         {"no_times  4 there is no further output time to append"}},
        {"damaged index of the last output time",
         [=] {
             runBefore(append);
             cut("to.tec_append", 5);
         },
         {"control_file ! Error reading file: to.tec_append; It must have 12 bytes",
          "unfinished_data_set to.pm.szplt an earlier run left this data set unfinished, with 2 "
          "output times up to 3600; this run replaces it"}},
    });
}

TEST_F(CheckFindings, FindsFaultsOfObservations) {
    const std::string ranges = "-1e9 1e9\n-1e9 1e9\n-1e9 1e9\n";
    // A continuum of bricks on the nodes of pm: heads are interpolated.
    const auto addDual = [=] {
        makeProblem("--nx 2 --ny 2 --layers 2 --times 3 --variables head,sat,v,Rain "
                    "--domains dual --coupling common");
        control("end\nwrite pm domain file\ncompare heads 3d domain\n" + ranges +
                "end\nwrite dual domain file\nend\n");
    };
    const auto pmBlock = [](const std::string& lines) {
        control("end\nwrite pm domain file\n" + lines + "end\n");
    };
    expectFindings({
        {"outside",
         [=] {
             pmBlock("compare heads 3d domain\n" + ranges + "compare gw table elevation\n");
             put("t.observed_heads", "3\n1e6 1e6 1e6 1\n100 100 -1e6 1\n100 100 200 1\n");
         },
         {"outside_mesh t.observed_heads observations 1 to 3 of \"compare heads 3d domain\" are "
          "outside the mesh, but compared at the nearest node",
          "outside_mesh t.observed_heads observation 1 of \"compare gw table elevation\" is "
          "outside the mesh, but compared at the nearest node"}},
        {"interpolated",
         [=] {
             addDual();
             put("t.observed_heads", "2\n1e6 1e6 1e6 1\n500 500 200 1\n");
         },
         {"outside_mesh t.observed_heads observation 1 of \"compare heads 3d domain\" is outside "
          "the mesh, but compared with a simulated value of 0"}},
        {"elements of other observations",
         [=] {
             addDual();
             put("t.observed_heads", "1\n1500 900 200 1\n");
             EXPECT_EQ(runs::runHere().status, 0);
             put("t.observed_heads", "1\n500 500 200 1\n");
         },
         {"old_elements to.ObsShape.txt an earlier run wrote it for other observations or another "
          "mesh than those of t.observed_heads; delete it"}},
        {"more observations than elements",
         [=] {
             addDual();
             std::string nine = "9\n";
             for (int i = 0; i < 9; ++i) nine += "500 500 200 1\n";
             put("t.observed_heads", nine);
         },
         {"observations t.observed_heads! observation 9 has no element of the same number, pm has "
          "only 8"}},
        {"outside a mesh without layers",
         [=] {
             sample_files::Integers tetrahedra;
             for (int corner = 0; corner < 32; ++corner) tetrahedra.push_back(corner % 27 + 1);
             put("to.elements_pm", sample_files::integerRecords({4, 8}) +
                                       sample_files::integerRecord(tetrahedra) +
                                       sample_files::integerRecord(sample_files::Integers(8, 1)));
             pmBlock("compare heads 3d domain\n" + ranges);
             put("t.observed_heads", "2\n100 100 1e6 1\n100 100 200 1\n");
         },
         {"inconsistent_zone  2 3 pm: the zone has values of a variable that the data set does not "
          "have; the plot file cannot be read",
          "outside_mesh t.observed_heads observation 1 of \"compare heads 3d domain\" is outside "
          "the mesh, but compared at the nearest node"}},
        {"none in the ranges",
         [=] {
             pmBlock("compare heads 3d domain\n1 2\n1 2\n1 2\n");
             put("t.observed_heads", "1\n100 100 -1e6 1\n");
         },
         {"empty_comparison t.plot.control:3 no observation of t.observed_heads is compared"}},
        {"no heads",
         [=] {
             pmBlock("no pm heads\ncompare heads 3d domain\n" + ranges +
                     "compare depth to gw table\n");
         },
         {"no_results t.plot.control:4! the comparison needs Head of pm, which the run does not "
          "have",
          "outside_mesh t.observed_heads observations 4, 6, 9, 11, 17, 18, 22 of \"compare heads "
          "3d domain\" are outside the mesh, but compared at the nearest node",
          "no_results t.plot.control:8! the comparison needs Depth2GWT of pm, which the run does "
          "not have",
          "outside_mesh t.observed_d2gwt observations 6, 9, 17, 22 of \"compare depth to gw "
          "table\" are outside the mesh, but compared at the nearest node"}},
        {"no observations",
         [=] {
             pmBlock("compare heads 3d domain\n" + ranges);
             fs::remove("t.observed_heads");
         },
         {"observations t.plot.control:3! Failed to open file: t.observed_heads (File with the "
          "specified name could not be found)"}},
    });
}

} // namespace
