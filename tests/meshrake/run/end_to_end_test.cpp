#include "tests/support/data_set.hpp"
#include "tests/support/runs.hpp"

// Whole runs, of the program or inside this process.
namespace {

using namespace sample_files;
using namespace runs;

class Run : public ProblemRun {
protected:
    Run() { problem = brickProblem({1, 1, 1, 4}); }
};

// One brick and its surface at three output times, with variables whose files are missing at some
// of them.
TEST_F(Run, WritesTheExpectedFiles) {
    problem = brickProblem({1, 1, 1, 3});
    problem["to.sat_pm.0001"] = problem["to.sat_pm.0003"] =
        resultFile("0.0", {Singles{1, 1, 1, 1, 0.5F, 0.25F, 0.125F, 0}});
    problem["to.vwc_pm.0002"] = resultFile("0.0", {Reals(8)});
    problem["to.v_pm.0001"] = problem["to.v_pm.0002"] =
        resultFile("0.0", {Singles{0.1F}, Singles{-2.5F}, Singles{3e-10F}});
    problem.erase("to.head_olf.0002");
    write(problem);
    std::set<std::string> files = filesHere();
    files.insert({"t.plot.control", "to.meshrake.eco", "to.olf.dat", "to.pm.dat"});
    for (const bool first : {true, false}) {
        const Ran ran = runProgram();
        EXPECT_EQ(ran.status, 0);
        expectFile("brick.pm.dat", getDated("to.pm.dat"));
        expectFile("brick.olf.dat", getDated("to.olf.dat"));
        if (!first) continue; // the second run reads the template of the first
        EXPECT_EQ(filesHere(), files);
        expectFile("brick.screen", ran.screen);
        expectFile("brick.meshrake.eco", get("to.meshrake.eco"));
        EXPECT_EQ(ran.errors,
                  "\n*********************************\n***      WARNING MESSAGE      ***\n"
                  "*********************************\n\n"
                  "Meshrake has been deprecated and will be removed in a future release.\n"
                  "We recommend using tvn2vtu for post-processing going forward.\n\n");
    }
}

// Returns the results of a run: status, screen and files, without the date of a data set. The
// sidecar of an unfinished data set has a hash of that date.
Problem resultsOf(const Ran& ran) {
    Problem results{{"status", std::to_string(ran.status)}, {"screen", ran.screen}};
    for (const std::string& name : filesHere())
        results[name] = name.ends_with(".szhdr") ? "" : getDated(name);
    return results;
}

// Several runs in one process give the same results as several processes. The runs: one that sets
// nearly all state, one that fails with its data sets open, one that writes a template, and a plain
// run.
TEST_F(Run, LeavesNoStateForTheNextRun) {
    const std::string all = "tecplot binary append\ntecplot binary flush interval\n2\n"
                            "truncate time domain\n0 20\n"
                            "number of digits for output file suffix\n4\nend\n"
                            "write pm domain file\nno pm heads\ntruncate pm domain\n"
                            "0 1\n0 1\n0 1\nend\n"
                            "simulation time unit conversion factor\n5 2\n"
                            "interpolate depth to gw table\nplot pm zone isopach structure\n";
    const std::string plain = "end\nwrite pm domain file\nend\nwrite olf domain file\nend\n";
    const Bytes temperatures = resultFile("0.0", {Reals(8)});
    const Bytes species = integerRecords({1, 0}) + textRecord("heat", 50) + integerRecords({-1, 0});
    problem["to.freeze_thaw_temp_pm.0001"] = temperatures;
    const Bytes head = problem["to.head_olf.0002"];
    for (const std::string mode : {"", "tecplot binary mode\n"}) {
        if (!mode.empty() && !MESHRAKE_OWN_TECIO) continue;
        const Problem changes[] = {
            {{"t.plot.control", mode + all},
             {"to.species", species},
             {"to.conc_pm.heat.0001", temperatures}},
            {{"t.plot.control", mode + plain}, {"to.head_olf.0002", head.substr(0, 60)}},
            {}, // --make_plot_control
            {{"t.plot.control", mode + plain},
             {"to.head_olf.0002", head},
             {"to.species", integerRecords({0, 0})}}};
        std::vector<Problem> results[2];
        for (const bool own : {false, true}) {
            const Folder here;
            write(problem);
            for (const Problem& changed : changes) {
                write(changed);
                const std::string argument = changed.empty() ? "--make_plot_control" : "";
                const Ran ran = own ? runProgram(argument) : runHere({argument});
                EXPECT_EQ(ran.status, &changed == &changes[1]) << mode << ran.errors;
                results[own].push_back(resultsOf(ran));
            }
        }
        for (std::size_t i = 0; i < results[0].size(); ++i)
            for (const auto& [name, bytes] : results[1][i])
                EXPECT_TRUE(results[0][i][name] == bytes) << mode << "step " << i << " " << name;
    }
}

TEST_F(Run, AsksForThePrefix) {
    problem["sub dir.skiv"] = "";
    problem["sub"] = "a file without the extension";
    std::string report;
    for (const auto& [batch, input] : // "-": no such file
         std::initializer_list<std::pair<std::string, std::string>>{
             {"\n \t\n t rest\nmore\n", ""},
             {"-", "t\n"},
             {"", "t"},
             {"'t\n", "t\n"},
             {"sub dir\n", "\n\nT\nsub/t\n./t"}}) {
        problem["batch.pfx"] = batch;
        write(problem);
        if (batch == "-") std::filesystem::remove("batch.pfx");
        const Ran ran = runProgram("", input);
        EXPECT_EQ(ran.status, 0);
        const std::size_t dialogue = ran.screen.rfind("@\n") + 2;
        report += "---- " + batch + "\n" +
                  ran.screen.substr(dialogue, ran.screen.find(" of bricks") - dialogue) +
                  "\n---- then " + get("batch.pfx") + "\n";
    }
    expectFile("prompts.txt", report);
    std::filesystem::remove("batch.pfx");
    // A program may never stop its answers.
    for (const std::string line : {"wrong\n", "\n"}) {
        std::string lines;
        for (int i = 0; i < 1001; ++i) lines += line;
        expectFailure(runProgram("", lines), {"**\n\nError reading file: standard input\nNone of "
                                              "the first 1000 lines names a problem.\n"});
    }
    expectFailure(runProgram("", "x\n\n"), {"**\n\nError reading file: standard input\nError "
                                            "detail: End-of-file encountered on read\n"});
    EXPECT_FALSE(std::filesystem::exists("batch.pfx"));
}

TEST_F(Run, CommandLine) {
    const Ran made = run("nonsense\n", {"--Make_Plot_Control", "-x  ", "", "--never"});
    EXPECT_EQ(made.status, 0);
    EXPECT_THAT(made.screen, HasSubstr("@\n\nInvalid command line option: -x\nStack of bricks"));
    EXPECT_THAT(made.screen,
                testing::EndsWith("\nGenerate t.plot.control file and terminate...\n\n\n\n"
                                  "                    ---- Normal exit ----\n\n\n"));
    EXPECT_THAT(get("t.plot.control"),
                testing::StartsWith("tecplot mode\n! tecplot binary mode\n"));
    EXPECT_FALSE(std::filesystem::exists("to.pm.dat"));
}

// Returns the lines of the screen about output times and data sets, then the times and variables of
// the only data set.
std::string timesOf(const Ran& ran) {
    std::istringstream in(ran.screen);
    std::string lines = runs::endingOf(ran.errors) + "\n";
    for (std::string line; std::getline(in, line);)
        for (const char* word : {"Time ", "Skip ", "Warning:", "Creating", "Closing"})
            if (line.starts_with(word)) lines += line + "\n";
    EXPECT_FALSE(std::filesystem::exists("to.olf.dat"));
    const data_set::Text pm = data_set::parse(get("to.pm.dat"));
    for (const std::string& line : pm.zoneLines)
        lines += "time " + data_set::between(line, "SOLUTIONTIME=", ",") + "\n";
    std::filesystem::remove("to.pm.dat");
    return lines + data_set::join(pm.set.variables) + "\n\n";
}

TEST_F(Run, OutputTimes) {
    const std::string pm = "end\nwrite pm domain file\nend\n";
    problem["to.ElemPor_pm.0001"] = resultFile("", {Singles{0.25F}}); // without a time stamp
    std::string report = timesOf(run("truncate time domain\n10 20\n" + pm)) +
                         timesOf(run("truncate time domain\n11,\n1d1\n" + pm));
    Problem others = problem;
    others["to.head_olf.0002"] = resultFile("soon", {Reals(4)});
    std::swap(problem, others);
    report += timesOf(run("truncate time domain\n0 1\n" + pm));
    problem = others;
    problem["to.head_pm.0001"] = problem["to.head_olf.0001"] =
        resultFile("  1.50E+01 later", {Reals(8)});
    report +=
        timesOf(run(pm)) + timesOf(run(pm + "simulation time unit conversion factor\n0.25 0.1\n"));
    for (int time = 1; time <= 4; ++time)
        for (const std::string tag : {"pm", "olf"}) {
            const std::string file = "to.head_" + tag + ".000" + std::to_string(time);
            problem.erase(file);
            std::filesystem::remove(file);
        }
    report += timesOf(run(pm));
    expectFile("output_times.txt", report);
}

TEST_F(Run, ShowsWarnings) {
    problem["to.gen"] =
        textRecord("2918 beta", 80) + integerRecord({0}) + record("") + integerRecord({7});
    problem["to.olf.szplt.szhdr"] = "";
    const Ran ran = run();
    EXPECT_EQ(ran.status, 0);
    for (const char* warning :
         {"**\n\nSkiv version does not match MESHRAKE version.\nThis may result in a failure of "
          "MESHRAKE to run.\n\n",
          "**\n\nTecplot szplt temporary files found (to.olf.szplt.szhdr, etc.)\nConsider deleting "
          "them, otherwise data may be appended.\n\n"})
        EXPECT_THAT(ran.errors, HasSubstr(warning));
    const Bytes pm = get("to.pm.dat");
    EXPECT_THAT(pm, testing::StartsWith("TITLE = \"\"\n"));
    EXPECT_THAT(pm, HasSubstr("Length_Base_Unit=\"cm\"\nDATASETAUXDATA Time_Base_Unit=\"d\"\n"));
    EXPECT_THAT(pm, HasSubstr("# Head units: (cm)\n"));
}

// Files of the simulator in other formats with the same contents give the same plots.
TEST(MadeProblem, GivesTheSamePlotsInAllFileFormats) {
    std::string domains, digits = "number of digits for output file suffix\n6\nend\n";
    for (const std::string tag : {"pm", "dual", "olf", "frac", "chan", "well", "tile"}) {
        domains += (domains.empty() ? "" : ",") + tag;
        digits += "write " + tag + " domain file\nend\n";
    }
    Problem plain;
    for (const std::string form : {"", "--generation older", "--sub-records 60",
                                   "--sub-records 7 --generation older", "--digits 6"}) {
        const Folder folder;
        makeProblem("--nx 4 --ny 3 --layers 2 --times 3 --variables all --tensor --domains " +
                    domains + " " + form);
        if (form == "--digits 6") put("t.plot.control", digits);
        EXPECT_EQ(runProgram().status, 0) << form;
        Problem plots;
        for (const std::string& name : filesHere())
            if (name.ends_with(".dat")) plots[name] = getDated(name);
        EXPECT_EQ(plots.size(), 7U);
        if (form.empty()) plain = plots;
        EXPECT_TRUE(plots == plain) << form;
    }
}

} // namespace
