#include "meshrake/plot_data/array_writing.hpp"
#include "meshrake/plot_data/connectivity.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "meshrake/plot_data/unit_labels.hpp"
#include "meshrake/plot_data/zone.hpp"

#include "meshrake/model/run_state.hpp"
#include "tests/runs.hpp"
#include "tvncommon/file_units.hpp"
#include "tvncommon/io_layer.hpp"

#include <gmock/gmock.h>

#include <limits>

namespace {

using model::Domain;
using model::run;
using namespace plot_data;
using sample_files::Integers;

class PlotData : public runs::PartOfRun {
protected:
    PlotData() {
        domain.tecplotUnit = file_units::getUnit();
        EXPECT_EQ(io_layer::openTextReplace(domain.tecplotUnit, "plot", io_layer::Flush::inBlocks),
                  io_layer::ok);
    }

    // What has been written since the last call.
    std::string take() {
        io_layer::flush(domain.tecplotUnit);
        const std::string text = sample_files::get("plot").substr(taken);
        taken += text.size();
        return text;
    }

    Domain domain;

private:
    std::size_t taken = 0;
};

TEST_F(PlotData, ZoneLines) {
    domain.nnTruncated = 25;
    domain.neTruncated = 16;
    domain.zoneType = "FEBRICK";
    const std::string counts = ", DATAPACKING=BLOCK, NODES=25, ELEMENTS=16, ZONETYPE=";
    const auto lists = [](bool withLists) {
        for (const int v : {4, 12}) withLists ? tecplotVarLocCCAdd(v) : void();
        for (const int v : {1, 2, 3}) withLists ? tecplotVarShareAdd(v) : void();
    };
    lists(true);
    tecplotWriteZoneFE("pm  ", "  1.50  ", 0, domain);
    EXPECT_EQ(take(), "ZONE T=\"pm\", SOLUTIONTIME=1.50" + counts +
                          "FEBRICK, VARLOCATION=([4,12]=CELLCENTERED)\n");
    domain.dataSet.varTypeList = "DOUBLE,LONGINT";
    lists(true);
    tecplotWriteZoneFE("pm", "", 1, domain);
    EXPECT_EQ(take(), "ZONE T=\"pm\"" + counts +
                          "FEBRICK, VARLOCATION=([4,12]=CELLCENTERED), VARSHARELIST=([1,2,3]), "
                          "CONNECTIVITYSHAREZONE=1\nDT=(DOUBLE,LONGINT)\n");
    domain.zoneType = "";
    tecplotWriteZoneFE("olf", "2", 0, domain);
    EXPECT_EQ(take(), "ZONE T=\"olf\", SOLUTIONTIME=2" + counts + "\nDT=(DOUBLE,LONGINT)\n");
    EXPECT_EQ(domain.dataSet.zoneNumber, 3);
}

TEST_F(PlotData, ListsAndZoneLinesAreCutAt512) {
    std::string list;
    for (int v = 1; v <= 200; ++v) {
        list += (v > 1 ? "," : "") + std::to_string(v);
        tecplotVarLocCCAdd(v);
    }
    tecplotWriteZoneFE("pm", "", 1, domain);
    const std::string whole =
        "ZONE T=\"pm\", DATAPACKING=BLOCK, NODES=0, ELEMENTS=0, ZONETYPE=, VARLOCATION=([" + list;
    EXPECT_EQ(take(), whole.substr(0, 512) + "\n");

    // Cut behind ", VARLOCATION=([1]=CELLCENTERED)," the line loses its last blank, and there is
    // room for one more character of the next part.
    const std::string front =
        ", DATAPACKING=BLOCK, NODES=0, ELEMENTS=0, ZONETYPE=, VARLOCATION=([1]=CELLCENTERED)";
    const std::string title(510 - front.size() - 9, 'x');
    tecplotVarLocCCAdd(1);
    tecplotVarShareAdd(2);
    tecplotWriteZoneFE(title, "", 1, domain);
    EXPECT_EQ(take(), "ZONE T=\"" + title + "\"" + front + ",,\n");
}

TEST_F(PlotData, Declarations) {
    tecplotInit(domain);
    EXPECT_EQ(tecplotVarAdd("X", domain), 1);
    tecplotDataType(DataType::real8, domain);
    tecplotVarUnitsAdd("X", 1, "L * T^-1", domain);
    EXPECT_EQ(tecplotVarAdd("Newton Residual ", domain), 2);
    tecplotDataType(static_cast<DataType>(9), domain);
    tecplotVarUnitsAdd("Newton Residual", 2, "", domain);
    EXPECT_EQ(tecplotVarAdd("Zone", domain), 3);
    tecplotDataType(DataType::longInt, domain);
    tecplotVarUnitsAdd("Zone", 3, "1", domain);
    EXPECT_EQ(takeScreen(), "   1     X\n   2     Newton Residual\n   3     Zone\n");
    EXPECT_EQ(takeEcho(), "   1     X\n   2     Newton Residual\n   3     Zone\n");
    EXPECT_EQ(domain.dataSet.varTypeList, "DOUBLE,SINGLE,LONGINT");

    tecplotFileClose(domain); // nothing was opened: not a word
    EXPECT_EQ(takeScreen(), "");
    tecplotFileOpen("to.pm", "Title  ", domain);
    tecplotVarUnitsWrite(domain);
    tecplotFileClose(domain);
    tecplotFileClose(domain);
    EXPECT_EQ(takeScreen(), "Closing tecplot file: to.pm\n");
    EXPECT_EQ(takeEcho(), "Closing tecplot file: to.pm\n");
    EXPECT_EQ(
        sample_files::getDated("to.pm.dat"),
        "TITLE = \"Title\"\nVARIABLES = \"X\",\"Newton Residual\",\"Zone\"\n"
        "DATASETAUXDATA Source=\"Terravane, Halvorne Inc.\"\nDATASETAUXDATA TVN_Version=\"2918\"\n"
        "DATASETAUXDATA Date_Created=\"\"\nDATASETAUXDATA Model_Prefix=\"t\"\nDATASETAUXDATA "
        "Mass_Base_Unit=\"kg\"\n"
        "DATASETAUXDATA Length_Base_Unit=\"m\"\nDATASETAUXDATA Time_Base_Unit=\"s\"\n"
        "DATASETAUXDATA Temperature_Base_Unit=\"deg C\"\n"
        "# X units: (m s^-1)\n# Zone units: (-)\nVARAUXDATA 1 Units=\"(m s^-1)\"\nVARAUXDATA 3 "
        "Units=\"(-)\"\n");
}

// Text of values in rows of five, as the formats of the C library give it.
std::string rowsOf(const Integers& values) {
    std::string text;
    char field[16];
    for (std::size_t i = 0; i < values.size(); ++i) {
        std::snprintf(field, sizeof field, " %10d", values[i]);
        text += field;
        if (i % 5 == 4 || i + 1 == values.size()) text += '\n';
    }
    return text;
}

// Small and large counts, and counts around a block of 1048576 bytes: 18724 rows of 56.
TEST_F(PlotData, IntegerArraysWholeAndPacked) {
    for (const std::size_t count : std::initializer_list<std::size_t>{
             0, 1, 4, 5, 6, 24, 5000, 5001, 93614, 93615, 93616, 93620, 93625, 187300}) {
        Integers values, kept;
        std::vector<std::uint8_t> some, none(count), all(count, 1);
        for (std::size_t i = 0; i < count; ++i) {
            values.push_back(static_cast<std::int32_t>(i * 37) - 1000);
            some.push_back(i % 3 != 1);
            if (some.back()) kept.push_back(values.back());
        }
        const auto text = [&](const Packing& packing) {
            tecplotWriteArrayInt4(1, static_cast<std::int64_t>(count), values.data(), packing,
                                  "label ", domain);
            return take();
        };
        EXPECT_TRUE(text({}) == "# label\n" + rowsOf(values)) << count;
        EXPECT_TRUE(text({true, all.data()}) == "# label\n" + rowsOf(values)) << count;
        EXPECT_TRUE(text({true, some.data()}) == "# label\n" + rowsOf(kept)) << count;
        EXPECT_EQ(text({true, none.data()}), "# label\n");
        EXPECT_TRUE(text({false, none.data()}) == "# label\n" + rowsOf(values)) << count;
    }
    // A comment that leaves one byte less than a row at the end of the block, or none.
    const Integers values(100000, -1);
    for (const std::size_t length : std::initializer_list<std::size_t>{29, 30, 31}) {
        const std::string label(length, 'x');
        tecplotWriteArrayInt4(1, 100000, values.data(), {}, label, domain);
        EXPECT_TRUE(take() == "# " + label + "\n" + rowsOf(values)) << length;
    }
}

// The same of reals: 8004 rows of 131 bytes to a block.
TEST_F(PlotData, RealArraysWholeAndPacked) {
    const std::string fields[] = {"  0.50000000000000000     ", "  -4.0000000000000000     ",
                                  "  0.15625000000000000E-001"};
    for (const std::size_t count :
         std::initializer_list<std::size_t>{0, 3, 5, 7, 40014, 40019, 40020, 40021, 40025, 80041}) {
        std::vector<double> real8;
        std::vector<float> real4;
        std::vector<std::uint8_t> mask;
        std::string whole = "# v\n", packed = whole;
        for (std::size_t i = 0, n = 0; i < count; ++i) {
            const double value = i % 3 == 0 ? 0.5 : i % 3 == 1 ? -4 : 0.015625;
            real8.push_back(value);
            real4.push_back(static_cast<float>(value));
            mask.push_back(i % 3 != 2);
            whole += fields[i % 3] + (i % 5 == 4 || i + 1 == count ? "\n" : "");
            if (!mask.back()) continue;
            const bool last = i + 1 == count || (i + 2 == count && (i + 1) % 3 == 2);
            packed += fields[i % 3] + (n++ % 5 == 4 || last ? "\n" : "");
        }
        const auto n = static_cast<std::int64_t>(count);
        tecplotWriteArrayReal8(1, n, real8.data(), {}, "v", domain);
        EXPECT_TRUE(take() == whole) << count;
        tecplotWriteArrayReal8(1, n, real8.data(), {true, mask.data()}, "v", domain);
        EXPECT_TRUE(take() == packed) << count;
        tecplotWriteArrayReal4(1, n, real4.data(), {true, mask.data()}, "v", domain);
        EXPECT_EQ(take().size(), packed.size()) << count;
    }
    const float tenth = 0.1F;
    tecplotWriteArrayReal4(1, 1, &tenth, {}, "v", domain);
    EXPECT_EQ(take(), "# v\n  0.10000000149011612     \n");
}

std::string connectivity(const std::vector<Integers>& rows) {
    std::string text = "# element node lists\n";
    char field[16];
    for (const Integers& row : rows) {
        for (const std::int32_t node : row) {
            std::snprintf(field, sizeof field, "%10d ", node);
            text += field;
        }
        text += '\n';
    }
    return text;
}

// Nodes 1 to 8 of pm are written as 11 to 18, but the eighth is not.
TEST_F(PlotData, ConnectivityPatterns) {
    domain.tag = model::tags::pm;
    domain.couplingScheme = 1;
    domain.nodeRenumber = {11, 12, 13, 14, 15, 16, 17, 0};
    struct Case {
        int nodesPerElement;
        Integers slots;
        std::vector<Integers> rows;
    };
    const Case cases[] = {
        {2, {1, 2, 7, 8}, {{11, 12}, {17, 0}}},
        {3, {1, 2, 3, 7, 6, 5}, {{11, 12, 13, 13}, {17, 16, 15, 15}}},
        {4, {1, 2, 3, 4, 5, 6, 7, 0}, {{11, 12, 13, 14}, {15, 16, 17, 17}}},
        {6, {1, 2, 3, 4, 5, 6}, {{11, 12, 13, 13, 14, 15, 16, 16}}},
        {8, {8, 7, 6, 5, 4, 3, 2, 0}, {{0, 17, 16, 15, 14, 13, 12, 0}}},
        {5, {1, 2, 3, 4, 5}, {}},
        {1, {1, 2}, {}},
        {0, {}, {}},
    };
    for (const Case& c : cases) {
        domain.nodesPerElement = c.nodesPerElement;
        domain.elementNodes = c.slots;
        domain.elementCount =
            static_cast<std::int32_t>(c.slots.size()) / std::max(c.nodesPerElement, 1);
        domain.elementIncluded.assign(static_cast<std::size_t>(domain.elementCount), 1);
        tecplotWriteConnectivity(domain);
        EXPECT_EQ(take(), connectivity(c.rows)) << c.nodesPerElement;
        domain.elementIncluded.assign(domain.elementIncluded.size(), 0);
        tecplotWriteConnectivity(domain);
        EXPECT_EQ(take(), "# element node lists\n");
    }
}

TEST_F(PlotData, ConnectivityOverSeveralBlocks) {
    domain.tag = model::tags::pm;
    domain.nodesPerElement = 8;
    std::vector<Integers> rows;
    for (std::int32_t i = 1; i <= 25000; ++i) {
        domain.nodeRenumber.push_back(i);
        Integers row;
        for (int k = 0; k < 8; ++k) row.push_back((i * 7 + k * 5000) % 25000 + 1);
        domain.elementNodes.insert(domain.elementNodes.end(), row.begin(), row.end());
        domain.elementIncluded.push_back(i % 11 != 0);
        if (domain.elementIncluded.back()) rows.push_back(row);
    }
    domain.elementCount = 25000;
    tecplotWriteConnectivity(domain);
    EXPECT_TRUE(take() == connectivity(rows));
}

// Surface of six nodes on pm nodes 1 to 6, global numbers 101 to 106, and of two more behind walls,
// 107 and 108, for nodes 2 and 5: in elements of layer 1 and 2 the table exchanges them.
TEST_F(PlotData, QuadrilateralsByTheirOwnLinksAndWalls) {
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
    const std::vector<Integers> plain = {{1, 2, 5, 4}, {2, 3, 6, 5}, {2, 3, 6, 5},
                                         {1, 2, 5, 5}, {2, 0, 0, 0}, {2, 3, 6, 5}};
    tecplotWriteConnectivity(domain);
    EXPECT_EQ(take(), connectivity(plain));

    run.wallsPresent = true;
    run.wallLayers = 2;
    run.wallNodeFlag = {0, -1, 0, 0, 1, 0, 0, 0};
    run.wallNodeTable = {101,  107, 103, 104, 108, 106, 107, 108, 101, 102, 103, 104,
                         none, 106, 107, 108, 108, 108, 108, 108, 108, 108, 108, 108};
    run.wallElementLayer = {0, 1, 2, 1, 1, 3};
    const std::vector<Integers> exchanged = {{1, 2, 5, 4}, {7, 3, 6, 8}, {2, 3, 6, 5},
                                             {1, 2, 5, 5}, {7, 0, 0, 0}, {2, 3, 6, 5}};
    tecplotWriteConnectivity(domain);
    EXPECT_EQ(take(), connectivity(exchanged));

    // Truncated: node 1 is not written, nor is 8. All others move up; what 8 stood for stays.
    domain.truncateEnabled = true;
    domain.nodeIncluded = {0, 1, 1, 1, 1, 1, 1, 0};
    domain.nodeRenumber = {0, 1, 2, 3, 4, 5, 0, 0};
    tecplotWriteConnectivity(domain);
    EXPECT_EQ(
        take(),
        connectivity(
            {{0, 1, 4, 3}, {6, 2, 5, 4}, {1, 2, 5, 4}, {0, 1, 4, 4}, {6, 0, 0, 0}, {1, 2, 5, 4}}));

    // Walls are the surface's own; a domain that shares the nodes of pm has no links to go by.
    domain.truncateEnabled = false;
    domain.nodeRenumber = {1, 2, 3, 4, 5, 6, 0, 0};
    domain.tag = model::tags::frac;
    tecplotWriteConnectivity(domain);
    EXPECT_EQ(take(), connectivity(plain));
    domain.couplingScheme = 0;
    domain.nodeRenumber = {21, 22, 23, 24, 25, 26, 27, 28};
    domain.elementIncluded = {1, 0, 0, 0, 1, 0};
    tecplotWriteConnectivity(domain);
    EXPECT_EQ(take(), connectivity({{21, 22, 25, 24}, {22, 27, 28, 0}}));
}

} // namespace
