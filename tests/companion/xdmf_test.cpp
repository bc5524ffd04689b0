#include "tests/companion/made_set.hpp"
#include "tests/companion/tool_runs.hpp"

#include "companion/xdmf/xml_text.hpp"
#include "tests/support/data_set.hpp"

#include <cmath>
#include <cstring>
#include <ctime>
#include <filesystem>

namespace {

using data_set_file::DataSet;
using data_set_file::Zone;
using sample_files::get;
using sample_files::put;
using testing::HasSubstr;
using tool_runs::tool;

void write(const std::vector<std::string>& arguments) {
    const runs::Ran ran = tool("xdmf", arguments);
    EXPECT_EQ(ran.status, 0) << ran.errors;
}

std::vector<std::string> occurrences(const std::string& text, const std::string& first,
                                     const std::string& last) {
    std::vector<std::string> found;
    for (std::size_t at = 0; (at = text.find(first, at)) != std::string::npos;) {
        at += first.size();
        found.push_back(text.substr(at, text.find(last, at) - at));
    }
    return found;
}

// The values of a <DataItem>, read from its position.
std::vector<double> valuesOf(const std::string& item, const std::string& file) {
    const auto number = [&](const char* name) {
        return std::stoul(data_set::between(item, std::string(name) + "=\"", "\""));
    };
    const std::size_t count = number("Dimensions"), bytes = number("Precision");
    const std::string data = get(file).substr(number("Seek"), count * bytes);
    const auto copy = [&]<class T>(T) {
        std::vector<T> values(count);
        std::memcpy(values.data(), data.data(), data.size());
        return std::vector<double>(values.begin(), values.end());
    };
    if (item.find("\"Int\"") != std::string::npos) return copy(std::int32_t{});
    return bytes == 4 ? copy(float{}) : copy(double{});
}

// Replaces the time of a zone.
void putReplaced(const std::string& file, double before, double after) {
    std::string bytes = get(file);
    const std::size_t at = bytes.find(sample_files::bytesOf(std::vector<double>{before}));
    put(file, bytes.replace(at, 8, sample_files::bytesOf(std::vector<double>{after})));
}

struct Xdmf : tool_runs::ToolRun {};

TEST_F(Xdmf, ItemsHaveThePositionsOfTheValues) {
    write({pm});
    const DataSet set = data_set_file::read(pm);
    const std::string index = get("to.pm.xdmf");
    const auto grids = occurrences(index, "<Grid Name=\"pm\" GridType=\"Uniform\">", "</Grid>");
    EXPECT_EQ(occurrences(index, "<Time Value=\"", "\""), (std::vector<std::string>{"0", "10"}));
    ASSERT_EQ(grids.size(), set.zones.size());
    for (std::size_t z = 0; z < grids.size(); ++z)
        for (std::size_t v = 0; v < set.variables.size(); ++v) {
            const std::string part =
                v < 3 ? data_set::between(grids[z], "<Geometry", "</Geometry>")
                      : data_set::between(grids[z], "Name=\"" + set.variables[v] + "\"", "</Attr");
            const std::size_t item = v < 3 ? v : 0;
            const std::size_t share = set.zones[z].shares[v] > 0 ? 0 : z;
            EXPECT_EQ(valuesOf(occurrences(part, "<DataItem", ">").at(item), pm),
                      set.zones[share].values[v])
                << set.variables[v];
        }
}

TEST_F(Xdmf, NamesOfIndexAndFiles) {
    std::filesystem::create_directories("a & b/deep");
    std::filesystem::create_directories("c");
    std::filesystem::create_symlink("../a & b/deep", "c/link");
    std::filesystem::copy(pm, "a & b/so.pm.szplt");
    struct Case {
        std::vector<std::string> arguments;
        std::string index, file; // as text of XML
    };
    const Case cases[] = {
        {{pm}, "to.pm.xdmf", pm},
        {{"./" + pm, olf}, "t.xdmf", olf},
        {{pm, "-o", "other.xdmf"}, "other.xdmf", pm},
        {{"a & b/so.pm.szplt"}, "a & b/so.pm.xdmf", "so.pm.szplt"},
        {{"a & b/so.pm.szplt", "-o", "i.xdmf"}, "i.xdmf", "a &amp; b/so.pm.szplt"},
        {{pm, "-o", "a & b/deep/i.xdmf"}, "a & b/deep/i.xdmf", "../../to.pm.szplt"},
        {{pm, "-o", "c/link/j.xdmf"}, "a & b/deep/j.xdmf", "../../to.pm.szplt"},
        {{std::filesystem::absolute(pm).string(), "-o", "c/i.xdmf"}, "c/i.xdmf", "../to.pm.szplt"},
    };
    for (const auto& [arguments, index, file] : cases) {
        SCOPED_TRACE(index);
        write(arguments);
        EXPECT_THAT(get(index), HasSubstr(">" + file + "</DataItem>"));
    }
}

TEST_F(Xdmf, BlocksHaveAllTimes) {
    made_set::put("ao.pm", {.times = {0, 10, 30}});
    made_set::put("ao.olf", {.times = {10, 20}, .title = "olf"});
    made_set::put("ao.map", {.title = "map", .strand = -1});
    made_set::put("b.pm", {.times = {20}});
    const auto timesOf = [](const std::string& index) {
        return occurrences(get(index), "<Time Value=\"", "\"");
    };
    const std::vector<std::string> times{"0", "10", "20", "30", "0", "10", "20", "30"};
    write({"ao.pm.szplt", "ao.olf.szplt", "ao.map.szplt"});
    EXPECT_EQ(timesOf("a.xdmf"), times);
    EXPECT_EQ(occurrences(get("a.xdmf"), "<Grid Name=\"", "\" Gr"),
              (std::vector<std::string>{"domains", "pm", "pm", "pm", "none", "pm", "olf", "none",
                                        "olf", "olf", "none", "map"}));
    write({"ao.map.szplt"});
    EXPECT_EQ(timesOf("ao.map.xdmf"), std::vector<std::string>{});
    write({"ao.pm.szplt", "b.pm.szplt", "-o", "ab.xdmf"});
    EXPECT_THAT(get("ab.xdmf"), HasSubstr("<Grid Name=\"b.pm.szplt\" GridType=\"Collection\""));
}

TEST_F(Xdmf, VectorsAndNames) {
    made_set::put("v", {.variables = {"Vx", "Vy", "Vz", "qx", "Ni\xfc<\"&\x1b>", "V", "V"}});
    write({"v.szplt"});
    const std::string index = get("v.xdmf");
    EXPECT_EQ(occurrences(index, "<Attribute Name=\"", "\" Center"),
              (std::vector<std::string>{"Vx", "Vy", "Vz", "qx",
                                        "Ni\xc3\xbc&lt;&quot;&amp;\\x1b&gt;", "V", "V (2)"}));
    // Vx, Vy and Vz have two types; with one type they are a vector too.
    made_set::put("w", {.variables = {"a", "Vx", "Vy", "b", "c", "Vz"}});
    write({"w.szplt"});
    EXPECT_THAT(get("w.xdmf"), HasSubstr("Name=\"V\" Center=\"Cell\" AttributeType=\"Vector\""));
}

// A viewer takes the mesh of a block from the time before if the name of the file is the same.
TEST_F(Xdmf, MeshesHaveDifferentNamesOfTheFile) {
    made_set::put("m", {.times = {0, 1, 2, 3}, .sharedMesh = false});
    write({"m.szplt"});
    std::vector<std::string> names;
    for (const std::string& grid : occurrences(get("m.xdmf"), "<Topology", "</Topology>"))
        names.push_back(data_set::between(grid, "8\">", "<"));
    EXPECT_EQ(names,
              (std::vector<std::string>{"m.szplt", ".//m.szplt", ".//./m.szplt", ".//.//m.szplt"}));
}

TEST_F(Xdmf, NodesWithoutElementsArePoints) {
    made_set::put("points", {.variables = {"Head", "Kx"}, .elements = 0});
    write({"points.szplt"});
    const std::string index = get("points.xdmf");
    EXPECT_THAT(index,
                HasSubstr("\"Polyvertex\" NodesPerElement=\"1\" NumberOfElements=\"4\">\n</Top"));
    EXPECT_EQ(occurrences(index, "<Attribute Name=\"", "\""), std::vector<std::string>{"Head"});
}

TEST_F(Xdmf, CompleteZonesOfAnUnfinishedDataSet) {
    put(pm, get(pm) + std::string(1000, 'x'));
    write({pm});
    EXPECT_EQ(occurrences(get("to.pm.xdmf"), "<Time ", "/>").size(), 2U);
}

TEST_F(Xdmf, Refused) {
    std::filesystem::create_directories("d\n");
    std::filesystem::copy(pm, "d\n/to.pm.szplt");
    std::filesystem::copy(pm, "b\xfc.szplt");
    put("cut.szplt", get(pm).substr(0, get(pm).size() / 2));
    made_set::put("nodes", {.firstNode = 0});
    made_set::put("nodes2", {.firstNode = 2});
    made_set::put("nan", {.times = {1e77}});
    putReplaced("nan.szplt", 1e77, NAN);
    made_set::put("empty", {.times = {}});
    put("other.xml", "<?xml version=\"1.0\"?><other/>");
    const std::string pmBytes = get(pm);
    struct Case {
        std::vector<std::string> arguments;
        int status;
        std::string errors;
    };
    const Case cases[] = {
        {{}, 2, "FILE is required"},
        {{"b.szplt", "c.szplt"}, 2, "-o, for data sets that are not of one problem"},
        {{"b.szplt"}, 1, "b.szplt: File with the specified name"},
        {{pm, "cut.szplt", "-o", "x"}, 1, "cut.szplt: byte "},
        {{"nodes.szplt"}, 1, "element 1 has a node that is not in its zone"},
        {{"nodes2.szplt"}, 1, "element 2 has a node that is not in its zone"},
        {{"nan.szplt"}, 1, "nan.szplt: zone 1 has a time that is not a number"},
        {{"empty.szplt"}, 1, "empty.szplt: no complete zone"},
        {{"b\xfc.szplt"}, 1, "b\xfc.szplt: an index cannot contain this file name"},
        {{"d\n/to.pm.szplt", "-o", "x"}, 1, "an index cannot contain this file name"},
        {{"-o", pm, olf}, 1, "to.pm.szplt: exists and is not an index"},
        {{"-o", "other.xml", pm}, 1, "other.xml: exists and is not an index"},
        {{pm, "-o", "no/x"}, 1, "no/x: "},
        {{pm, "-o", "/dev/full"}, 1, "/dev/full: "},
    };
    for (const auto& [arguments, status, errors] : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const runs::Ran ran = tool("xdmf", arguments);
        EXPECT_EQ(ran.status, status);
        EXPECT_THAT(ran.errors, HasSubstr(errors));
        EXPECT_FALSE(std::filesystem::exists("x"));
    }
    EXPECT_TRUE(get(pm) == pmBytes);
    // An index that may be written but not read could be another file.
    system_calls::table.open = [](const char* path, system_calls::OpenMode mode) {
        const bool isOther =
            std::string(path) == "other.xml" && mode == system_calls::OpenMode::read;
        return isOther ? (errno = EACCES, -1) : system_calls::systemTable().open(path, mode);
    };
    const runs::Ran unread = tool("xdmf", {pm, "-o", "other.xml"});
    system_calls::table = system_calls::systemTable();
    runs::expectFailure(unread, {"other.xml: Permission to access file denied"});
}

TEST_F(Xdmf, ManyOutputTimes) {
    made_set::Shape shape;
    shape.variables.clear();
    for (int v = 0; v < 37; ++v) shape.variables.push_back("variable " + std::to_string(v));
    shape.times.clear();
    for (int t = 0; t < 1000; ++t) shape.times.push_back(t);
    shape.elements = 200;
    made_set::put("many", shape);
    static std::size_t bytesRead = 0;
    bytesRead = 0;
    system_calls::table.readAt = [](int file, void* into, std::size_t size, std::int64_t at) {
        bytesRead += size;
        return system_calls::systemTable().readAt(file, into, size, at);
    };
    const std::clock_t begin = std::clock();
    write({"many.szplt"});
    EXPECT_LT(static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC, 1.0);
    system_calls::table = system_calls::systemTable();
    EXPECT_LT(bytesRead, std::filesystem::file_size("many.szplt") / 100);
    EXPECT_EQ(occurrences(get("many.xdmf"), "<Time ", "/>").size(), 1000U);
}

TEST(Utf8, CharactersThatXmlPermits) {
    struct Case {
        std::string text;
        bool utf8;
    };
    const Case cases[] = {
        {"a\xc3\xbc\xe2\x82\xac\xf0\x9f\x8c\x8a", true},
        {"\xfc", false},
        {"\xc3", false},
        {"\xc3\xc3", false},
        {"\xc1\xbf", false},         // 2 bytes for a character of 1
        {"\xe0\x9f\xbf", false},     // 3 for one of 2
        {"\xf0\x8f\xbf\xbf", false}, // 4 for one of 3
        {"\xed\xa0\x80", false},     // a surrogate
        {"\xef\xbf\xbe", false},     // U+FFFE
        {"\xef\xbf\xbd", true},
        {"\xf4\x90\x80\x80", false}, // after U+10FFFF
        {"\xf4\x8f\xbf\xbd", true},
    };
    for (const auto& [text, utf8] : cases) EXPECT_EQ(xdmf::isUtf8(text), utf8) << text;
}

} // namespace
