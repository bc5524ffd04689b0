#include "meshrake/plot_data/array_writing.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "meshrake/plot_data/unit_labels.hpp"
#include "meshrake/plot_data/zone.hpp"

#include "meshrake/model/run_state.hpp"
#include "tests/support/runs.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <limits>

namespace {

using model::Domain;
using model::run;
using namespace plot_data;
using sample_files::Integers;

class PlotData : public runs::PartOfRun {
protected:
    PlotData() { openPlot(); }

    void openPlot() {
        domain.tecplotUnit = file_units::openTextReplace("plot", io_layer::Flush::inBlocks);
    }

    // Returns what was written since the last call.
    std::string take() {
        tecplotEndZone(domain);
        file_units::freeUnit(domain.tecplotUnit);
        const std::string text = sample_files::get("plot");
        openPlot();
        return text;
    }

    Domain domain;
};

TEST_F(PlotData, FirstZoneSharesNothing) {
    tecplotVarShareAdd(1, domain);
    tecplotWriteZoneFE("pm  ", " ", 0, domain);
    EXPECT_EQ(take(), "ZONE T=\"pm\", DATAPACKING=BLOCK, NODES=0, ELEMENTS=0, ZONETYPE=\n");
}

TEST_F(PlotData, ListsAndZoneLinesAreCutAt512) {
    std::string list;
    for (int v = 1; v <= 200; ++v) {
        list += (v > 1 ? "," : "") + std::to_string(v);
        tecplotVarLocCCAdd(v, domain);
    }
    tecplotWriteZoneFE("pm", "", 1, domain);
    const std::string whole =
        "ZONE T=\"pm\", DATAPACKING=BLOCK, NODES=0, ELEMENTS=0, ZONETYPE=, VARLOCATION=([" + list;
    EXPECT_EQ(take(), whole.substr(0, 512) + "\n");

    // The line is cut after ", VARLOCATION=([1]=CELLCENTERED), " and loses the blank at its end, so
    // that one more character of the next part fits.
    const std::string front =
        ", DATAPACKING=BLOCK, NODES=0, ELEMENTS=0, ZONETYPE=, VARLOCATION=([1]=CELLCENTERED)";
    const std::string title(510 - front.size() - 9, 'x');
    tecplotVarLocCCAdd(1, domain);
    tecplotVarShareAdd(2, domain);
    tecplotWriteZoneFE(title, "", 1, domain);
    EXPECT_EQ(take(), "ZONE T=\"" + title + "\"" + front + ",,\n");
}

// Returns rows of five fields, for the values that the mask includes.
std::string rowsOf(const std::array<std::string, 3>& fields,
                   const std::vector<std::uint8_t>& mask) {
    std::string text;
    int n = 0;
    for (std::size_t i = 0; i < mask.size(); ++i)
        if (mask[i]) text += fields[i % 3] + (++n % 5 == 0 ? "\n" : "");
    return n % 5 == 0 ? text : text + '\n';
}

// Few values, and counts around blocks of 1048576 bytes: 18724 rows of 56 bytes, 8004 of 131.
TEST_F(PlotData, ArraysAreWrittenWholeAndPacked) {
    const std::array<std::string, 3> realFields{
        "  0.50000000000000000     ", "  -4.0000000000000000     ", "  0.15625000000000000E-001"};
    const std::array<std::string, 3> intFields{"          7", "         -4", " 2147483647"};
    for (const std::size_t count :
         std::initializer_list<std::size_t>{0, 1, 4, 5, 6, 5001, 40014, 40019, 40020, 40021, 40025,
                                            60027, 80041, 93615, 93620, 93625, 140430}) {
        std::vector<double> real8;
        std::vector<float> real4;
        Integers int4;
        std::vector<std::uint8_t> all(count, 1), none(count), some;
        for (std::size_t i = 0; i < count; ++i) {
            real8.push_back(i % 3 == 0 ? 0.5 : i % 3 == 1 ? -4 : 0.015625);
            real4.push_back(static_cast<float>(real8.back()));
            int4.push_back(i % 3 == 0 ? 7 : i % 3 == 1 ? -4 : 2147483647);
            some.push_back(i % 3 != 1);
        }
        const auto n = static_cast<std::int64_t>(count);
        for (const auto& [packed, mask] :
             {std::pair{false, &none}, {true, &all}, {true, &some}, {true, &none}}) {
            SCOPED_TRACE(count);
            const Packing packing{packed, mask->data()};
            const std::vector<std::uint8_t>& written = packed ? *mask : all;
            const std::string reals = "# v\n" + rowsOf(realFields, written);
            tecplotWriteArrayReal8(1, n, real8.data(), packing, "v ", domain);
            EXPECT_TRUE(take() == reals);
            tecplotWriteArrayReal4(1, n, real4.data(), packing, "v", domain);
            EXPECT_TRUE(take() == reals);
            tecplotWriteArrayInt4(1, n, int4.data(), packing, "v", domain);
            EXPECT_TRUE(take() == "# v\n" + rowsOf(intFields, written));
        }
    }
    // Comments of lengths around the one after which the rows exactly fill the block.
    const std::vector<std::uint8_t> all(100000, 1);
    for (const std::size_t length : std::initializer_list<std::size_t>{29, 30, 31}) {
        const std::string label(length, 'x');
        tecplotWriteArrayInt4(1, 100000, Integers(100000, 7).data(), {}, label, domain);
        EXPECT_TRUE(take() ==
                    "# " + label + "\n" + rowsOf({intFields[0], intFields[0], intFields[0]}, all));
    }
    const float tenth = 0.1F;
    tecplotWriteArrayReal4(1, 1, &tenth, {}, "v", domain);
    EXPECT_EQ(take(), "# v\n  0.10000000149011612     \n");
}

// Nodes 1 to 7 of pm have the output numbers 11 to 17; node 8 is not written.
TEST_F(PlotData, ConnectivityPatterns) {
    domain.tag = model::tags::pm;
    domain.couplingScheme = 1;
    domain.nodeRenumber = {11, 12, 13, 14, 15, 16, 17, 0};
    const std::pair<int, Integers> cases[] = {{2, {1, 2, 7, 8}},
                                              {3, {1, 2, 3, 7, 6, 5}},
                                              {4, {1, 2, 3, 4, 5, 6, 7, 0}},
                                              {6, {1, 2, 3, 4, 5, 6}},
                                              {8, {8, 7, 6, 5, 4, 3, 2, 0}},
                                              {5, {1, 2, 3, 4, 5}},
                                              {1, {1, 2}},
                                              {0, {}}};
    std::string report;
    for (const auto& [nodesPerElement, slots] : cases) {
        domain.nodesPerElement = nodesPerElement;
        domain.elementNodes = slots;
        domain.elementCount =
            static_cast<std::int32_t>(slots.size()) / std::max(nodesPerElement, 1);
        for (const bool included : {false, true}) {
            domain.elementIncluded.assign(static_cast<std::size_t>(domain.elementCount), included);
            tecplotWriteConnectivity(domain);
            if (included)
                report += std::to_string(nodesPerElement) + " nodes\n" + take();
            else
                EXPECT_EQ(take(), "# element node lists\n");
        }
    }
    sample_files::expectFile("connectivity.txt", report);
}

// A surface of six nodes on pm nodes 1 to 6, with global numbers 101 to 106, and of two nodes at
// cutoff walls, 107 and 108, which replace nodes 2 and 5 in elements of wall layers 1 and 2.
TEST_F(PlotData, QuadrilateralsUseTheirLinksAndWalls) {
    constexpr std::int32_t none = std::numeric_limits<std::int32_t>::min();
    domain.tag = model::tags::olf;
    domain.couplingScheme = 1;
    domain.nodesPerElement = 4;
    domain.nodeCount = 8;
    domain.nodeOffset = 100;
    domain.linkToPm = {1, 2, 3, 4, 5, 6, 2, 5};
    domain.linkFromPm = {101, 102, 103, 104, 105, 106, 0, none};
    domain.nodeRenumber = {1, 2, 3, 4, 5, 6, 0, 0};
    domain.elementNodes = {1, 2, 5, 4, 2, 3, 6, 5, 2, 3, 6, 5, 1, 2, 5, 0, 2, 7, 8, -4, 2, 3, 6, 5};
    domain.elementCount = 6;
    domain.elementIncluded.assign(6, 1);
    domain.nodeIncluded.assign(8, 1);
    std::string report;
    const auto add = [&](const std::string& what) {
        tecplotWriteConnectivity(domain);
        report += what + "\n" + take();
    };
    add("without walls");

    run.wallsPresent = true;
    run.wallLayers = 2;
    run.wallNodeFlag = {0, -1, 0, 0, 1, 0, 0, 0};
    run.wallNodeTable = {101,  107, 103, 104, 108, 106, 107, 108, 101, 107, 103, 104,
                         none, 106, 107, 108, 108, 108, 108, 108, 108, 108, 108, 108};
    run.wallElementLayer = {0, 1, 2, 1, 1, 3};
    add("with walls");

    // Truncated: nodes 1 and 8 are not written. The other numbers decrease. An element that would
    // use node 8 keeps the node that 8 replaces.
    domain.outputIsPacked = true;
    domain.nodeIncluded = {0, 1, 1, 1, 1, 1, 1, 0};
    domain.nodeRenumber = {0, 1, 2, 3, 4, 5, 0, 0};
    add("truncated");

    // Only the surface has walls. A common-node domain uses nodeRenumber, not its links.
    domain.outputIsPacked = false;
    domain.nodeRenumber = {1, 2, 3, 4, 5, 6, 0, 0};
    domain.tag = model::tags::frac;
    add("another domain");
    domain.couplingScheme = 0;
    domain.nodeRenumber = {21, 22, 23, 24, 25, 26, 27, 28};
    domain.elementIncluded = {1, 0, 0, 0, 1, 0};
    add("nodes of pm");
    sample_files::expectFile("quadrilaterals.txt", report);
}

} // namespace
