#include "meshrake/plot_control/control_reading.hpp"
#include "meshrake/plot_control/control_template.hpp"
#include "meshrake/plot_control/control_text.hpp"

#include "meshrake/model/run_state.hpp"
#include "tests/support/runs.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

namespace {

using namespace sample_files;
using namespace runs;
using model::Domain;
using model::Option;
using model::run;

class PlotControl : public PartOfRun {
protected:
    PlotControl() {
        const Grid grid;
        Problem problem = brickProblem(grid);
        addSheetDomain(problem, grid, "chan", 12, "", "");
        write(problem);
        const char* const tags[] = {"pm", "olf", "chan", "well", "addition"};
        for (std::size_t d = 0; d < domains.size(); ++d) create(domains[d], tags[d], pm);
        takeScreen();
        takeEcho();
    }

    // Reads a control text like a run, from its copy without comments.
    void read(const std::string& text) {
        put("control", text);
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

    std::array<Domain, 5> domains;
    Domain &pm = domains[0], &olf = domains[1];
};

TEST_F(PlotControl, TemplateHasTheInstructionsThatApplyToTheProblem) {
    const auto written = [&] {
        run.controlUnit = file_units::openTextReplace("template", io_layer::Flush::inBlocks);
        plot_control::writePlotControlInit();
        for (const Domain& domain : domains) plot_control::writePlotControl(domain);
        plot_control::writePlotControlEnd();
        file_units::freeUnit(run.controlUnit);
        return get("template");
    };
    expectFile("template.plot.control", written());
    put("t.observed_heads", "");
    const std::string window = "! -1.0E+20  1.0E+20\n! -1.0E+20  1.0E+20\n! -1.0E+20  1.0E+20\n";
    EXPECT_THAT(written(), HasSubstr("        1000\n! compare heads 3d domain\n" + window +
                                     "! compare gw table elevation\nend\n!---"));
    put("t.observed_d2gwt", "");
    EXPECT_THAT(written(),
                HasSubstr("! compare gw table elevation\n! compare depth to gw table\nend\n"));
}

TEST_F(PlotControl, InstructionsAndUnrecognizedLinesAreEchoed) {
    read("Tecplot Mode\nNonsense LINE\n  END of section  \n"
         "WRITE OLF domain file\nNo olf HEADS\nwhat Is\nend\nPlot PM depth below ground surface\n");
    expectFile("control_echo.txt", takeEcho() + "-- screen --\n" + takeScreen());
    EXPECT_FALSE(model::enabled(olf, Option::heads));
    EXPECT_TRUE(run.plotDepthBelowSurface);
}

TEST_F(PlotControl, SectionsCommentsAndIncludedFiles) {
    put("more", "! comment\n  no pm heads\ninclude more\n\nendless");
    const std::string cases[] = {"end\nwrite olf domain file\nend\nwrite pm domain file\nend\n",
                                 "end\nwrite pm domain file ! why\nwrite olf domain file",
                                 "tecplot binary append\nwrite pm domain file\nend\n",
                                 "tecplot binary append\nEndless\nwrite pm domain file\n",
                                 "end\nwrite pm domain file\nwrite olf domain file\nend\n",
                                 "end\nwrite well domain file\nno well heads\nno\nend\n",
                                 "  ! x\n\n \nend\r\nwrite pm domain file\r\n",
                                 "end\nwrite pm domain file\ninclude   more\nnonsense",
                                 std::string(254, ' ') +
                                     "end of a line that is cut\nwrite pm domain file\n",
                                 "end\nwrite olf domain file" + std::string(60, ' ') + "cut",
                                 ""};
    std::string report;
    for (const std::string& text : cases) {
        read(text);
        report += "---- " + text + "\n---- written:" + (run.tecplotAppend ? " append" : "");
        for (const Domain& domain : domains)
            if (domain.writeDomain.enabled) report += " " + domain.name;
        report += "\n" + takeScreen();
    }
    expectFile("control_sections.txt", report);
    EXPECT_FALSE(model::enabled(pm, Option::heads));
}

TEST_F(PlotControl, ValuesThatEndTheRun) {
    const std::string digits = "number of digits for output file suffix\n";
    const std::string cases[] = {
        digits + "3",
        digits + "11",
        digits + "4.0",
        digits,
        "truncate time domain\n1 x\nend\n",
        "end\nwrite pm domain file\ntruncate pm domain by layer\n1 2\n3 4\n1 2.5\n",
        "end\nwrite pm domain file\ntruncate pm domain\n1 2\n3 4\nend\n",
        "end\nsimulation time unit conversion factor\n",
        "include nowhere ! x\n",
        "include .\n"};
    std::string report;
    for (const std::string& text : cases) {
        report += "---- " + text + "\n---- " + endingOf([&] { read(text); }) + "\n";
        run.echoUnit = file_units::openTextReplace("echo", io_layer::Flush::everyLine);
    }
    expectFile("control_values.txt", report);
    read("tecplot binary flush interval\n-5\nend\n");
    EXPECT_EQ(run.tecplotFlushInterval, 1);
}

} // namespace
