#include "meshrake/plot_control/control_reading.hpp"
#include "meshrake/plot_control/control_template.hpp"
#include "meshrake/plot_control/control_text.hpp"

#include "meshrake/model/run_state.hpp"
#include "tests/support/runs.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <set>

namespace {

using model::Domain;
using model::Option;
using model::run;
using runs::expectEnd;
using testing::ElementsAre;
using testing::HasSubstr;

class PlotControl : public runs::PartOfRun {
protected:
    PlotControl() {
        const sample_files::Grid grid;
        sample_files::Problem problem = sample_files::brickProblem(grid);
        sample_files::addSheetDomain(problem, grid, "chan", 12, "", "");
        sample_files::write(problem);
        const char* const tags[] = {"pm", "olf", "chan", "well", "addition"};
        for (std::size_t d = 0; d < domains.size(); ++d) create(domains[d], tags[d], pm);
        takeScreen();
        takeEcho();
    }

    // Reads a control text as a run does, from its copy without comments.
    void read(const std::string& text) {
        sample_files::put("control", text);
        const int control = file_units::openTextRead("control");
        const int scratch = file_units::openTextReplace("scratch", io_layer::Flush::inBlocks);
        plot_control::strip_comments(control, scratch);
        file_units::freeUnit(control);
        file_units::freeUnit(scratch);
        run.controlUnit = file_units::openTextRead("scratch");
        plot_control::readPlotControlInit();
        for (Domain& domain : domains) plot_control::readPlotControl(domain);
        file_units::freeUnit(run.controlUnit);
    }

    static std::set<std::string> switchedOff(const Domain& domain) {
        std::set<std::string> labels;
        for (const model::DomainOption& option : domain.options)
            if (!option.enabled) labels.insert(option.label);
        return labels;
    }

    std::array<Domain, 5> domains;
    Domain &pm = domains[0], &olf = domains[1], &chan = domains[2], &well = domains[3];
};

TEST_F(PlotControl, TemplateOffersWhatFitsTheProblem) {
    const auto written = [&] {
        run.controlUnit = file_units::openTextReplace("template", io_layer::Flush::inBlocks);
        plot_control::writePlotControlInit();
        for (const Domain& domain : domains) plot_control::writePlotControl(domain);
        plot_control::writePlotControlEnd();
        file_units::freeUnit(run.controlUnit);
        return sample_files::get("template");
    };
    sample_files::expectFile("template.plot.control", written());
    sample_files::put("t.observed_heads", "");
    const std::string window = "! -1.0E+20  1.0E+20\n! -1.0E+20  1.0E+20\n! -1.0E+20  1.0E+20\n";
    EXPECT_THAT(written(), HasSubstr("        1000\n! compare heads 3d domain\n" + window +
                                     "! compare gw table elevation\nend\n!---"));
    sample_files::put("t.observed_d2gwt", "");
    EXPECT_THAT(written(),
                HasSubstr("! compare gw table elevation\n! compare depth to gw table\nend\n"));
}

TEST_F(PlotControl, EchoOfWhatIsRead) {
    read("Tecplot Mode\nNonsense LINE\n  END of section  \n"
         "WRITE OLF domain file\nNo olf HEADS\nwhat Is\nend\nPlot PM depth below ground surface\n");
    const std::string i = "\nINSTRUCTION: ", notice = "Plot control - Unrecognized line\n";
    EXPECT_EQ(takeEcho(), i + "Tecplot Mode\n" + i + "Nonsense LINE\n" + notice +
                              "nonsense line\n\n" + i + "END of section\n" + i +
                              "write olf domain file\n" + i + "No olf HEADS\n" + i + "what Is\n" +
                              notice + "what is\n\n" + i + "end\n" + i +
                              "plot pm depth below ground surface\n");
    EXPECT_EQ(takeScreen(), notice + "nonsense line\n\n" + notice + "what is\n\n");
    EXPECT_THAT(switchedOff(olf), ElementsAre("no olf heads"));
    EXPECT_TRUE(run.plotDepthBelowSurface);
}

TEST_F(PlotControl, ValuesOfSeveralInstructions) {
    const std::string tail(60, ' ');
    read("tecplot binary mode\ntecplot binary append\ntecplot binary flush interval\n7 rest\n"
         "truncate time domain\n-1.5,\n 2.5d3\nend\nplot pm zone isopach structure\n"
         "write olf domain file\ncompare surface water depth\n1 2\n3 4\n5 6\nno olf et" +
         tail +
         "beyond the line\nend\ninterpolate depth to gw table\n"
         "write pm domain file\ncompare heads 3d domain\n7 8\n9 10\n11 12\nno pm heads\n");
    EXPECT_TRUE(run.tecplotAppend && run.truncateTime && run.plotIsopach &&
                run.interpolateDepthToTable && run.compareHeads && run.compareSurfaceDepth);
    EXPECT_EQ(run.tecplotFlushInterval, 7);
    EXPECT_EQ(run.timeWindowMin, -1.5);
    EXPECT_EQ(run.timeWindowMax, 2500);
    EXPECT_THAT(run.compareWindow, ElementsAre(1, 2, 3, 4, 5, 6)); // one for both; olf is last
    EXPECT_THAT(switchedOff(olf), ElementsAre("no olf et"));
    EXPECT_THAT(switchedOff(pm), ElementsAre("no pm heads"));
    EXPECT_EQ(takeScreen(), "\nAppending to Tecplot output\nStarting at time index 0001\n\n");
}

TEST_F(PlotControl, SectionsAndFilters) {
    sample_files::put("more", "! comment\n  no pm heads\ninclude more\n\nendless");
    struct Case {
        std::string text, written, unrecognized;
    };
    const Case cases[] = {
        {"end\nwrite olf domain file\nend\nwrite pm domain file\nend\n", "pm olf ", ""},
        {"end\nwrite pm domain file ! why\nwrite olf domain file", "olf ", ""},
        {"tecplot binary append\nwrite pm domain file\nend\n", "", "write pm domain file"},
        {"tecplot binary append\nEndless\nwrite pm domain file\n", "pm ", ""},
        {"end\nwrite pm domain file\nwrite olf domain file\nend\n", "pm olf ",
         "write olf domain file"},
        {"end\nwrite well domain file\nno well heads\nno\nend\n", "", ""},
        {"  ! x\n\n \nend\r\nwrite pm domain file\r\n", "pm ", ""},
        {"end\nwrite pm domain file\ninclude   more\nnonsense", "pm ", "include more"},
        {std::string(254, ' ') + "end of a line that is cut\nwrite pm domain file\n", "", "en"},
        {"", "", ""}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        takeScreen();
        read(c.text);
        std::string written = run.tecplotAppend ? "append " : "";
        for (const Domain& domain : domains)
            if (domain.writeDomain.enabled) written += domain.name + " ";
        EXPECT_EQ(written, c.written);
        const std::string notice = "Plot control - Unrecognized line\n" + c.unrecognized + "\n\n";
        EXPECT_THAT(takeScreen(), testing::StartsWith(c.unrecognized.empty() ? "" : notice));
    }
    EXPECT_THAT(switchedOff(pm), ElementsAre("no pm heads"));
}

TEST_F(PlotControl, ValuesThatEndTheRun) {
    const std::string digits = "number of digits for output file suffix\n";
    const std::string bounds = "Output file suffix length must be between 4 and 10\n";
    const std::string unreadable = "Error reading output file suffix length\nError detail: ";
    const std::string file = "Error reading t.plot.control file\nError detail: ";
    const std::string badData = file + "Invalid data format";
    const std::array<std::string, 3> cases[] = {
        {digits + "3", "INPUT", bounds},
        {digits + "11", "INPUT", bounds},
        {digits + "4.0", "INPUT",
         unreadable + "Invalid data format during list-directed input\nError number: 59\n"},
        {digits, "INPUT", unreadable + "End-of-file encountered on read\nError number: -1\n"},
        {"truncate time domain\n1 x\nend\n", "INPUT", badData},
        {"end\nwrite pm domain file\ntruncate pm domain by layer\n1 2\n3 4\n1 2.5\n", "INPUT",
         badData},
        {"end\nwrite pm domain file\ntruncate pm domain\n1 2\n3 4\nend\n", "INPUT", badData},
        {"end\nsimulation time unit conversion factor\n", "INPUT", file + "End-of-file"},
        {"include nowhere ! x\n", "INPUT", "Include file not found: nowhere ! x\n"},
        {"include .\n", "FATAL", "Failed to open file: .\n"}};
    for (const auto& [text, kind, message] : cases) {
        SCOPED_TRACE(text);
        expectEnd(kind, message, [&, read = text] { this->read(read); });
        run.echoUnit = file_units::openTextReplace("echo", io_layer::Flush::everyLine);
    }
    read("tecplot binary flush interval\n-5\nend\n");
    EXPECT_EQ(run.tecplotFlushInterval, 1);
}

} // namespace
