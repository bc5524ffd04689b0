#include "tests/support/sample_files.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

namespace sample_files {

namespace {

template<class T>
Bytes fileOf(const std::string& text, const std::string& type,
             const std::vector<std::vector<T>>& components) {
    Bytes file = header(text, type, components.size(), components.front().size());
    for (const std::vector<T>& values : components) file += record(bytesOf(values));
    return file;
}

int nodesOf(const Grid& g) {
    return (g.nx + 1) * (g.ny + 1);
}

// Returns the node numbers of the cells of one sheet, from `first` on, counterclockwise.
std::vector<Integers> cellsOf(const Grid& g, std::int32_t first) {
    std::vector<Integers> cells;
    for (int j = 0; j < g.ny; ++j)
        for (int i = 0; i < g.nx; ++i) {
            const std::int32_t n = first + j * (g.nx + 1) + i;
            cells.push_back({n, n + 1, n + g.nx + 2, n + g.nx + 1});
        }
    return cells;
}

} // namespace

Bytes record(std::string_view payload) {
    const Bytes length = bytesOf(Integers{static_cast<std::int32_t>(payload.size())});
    return length + Bytes(payload) + length;
}

Bytes integerRecord(const Integers& values) {
    return record(bytesOf(values));
}

Bytes integerRecords(const Integers& values) {
    Bytes records;
    for (const std::int32_t value : values) records += integerRecord({value});
    return records;
}

Bytes realRecord(const Reals& values) {
    return record(bytesOf(values));
}

Bytes textRecord(std::string text, std::size_t length) {
    text.resize(length, ' ');
    return record(text);
}

Bytes header(const std::string& text, const std::string& type, std::size_t components,
             std::size_t values) {
    char rest[64];
    std::snprintf(rest, sizeof rest, "#!TVN001LE%s%02zu%010zu", type.c_str(), components, values);
    std::string front = text;
    front.resize(55, ' ');
    return record(front + rest);
}

Bytes resultFile(const std::string& text, const std::vector<Reals>& components) {
    return fileOf(text, "R08", components);
}

Bytes resultFile(const std::string& text, const std::vector<Singles>& components) {
    return fileOf(text, "R04", components);
}

Bytes resultFile(const std::string& text, const Integers& values) {
    return fileOf<std::int32_t>(text, "I04", {values});
}

void addSheetDomain(Problem& problem, const Grid& g, const std::string& tag, int nodesBefore,
                    const Bytes& furtherCoordinates, const Bytes& furtherElements) {
    const std::int32_t nodes = nodesOf(g), below = g.layers * nodes;
    Integers linkToPm, linkFromPm(static_cast<std::size_t>(below)), slots;
    for (std::int32_t i = 1; i <= nodes; ++i) {
        linkToPm.push_back(below + i);
        linkFromPm.push_back(nodesBefore + i);
    }
    for (const Integers& cell : cellsOf(g, below + 1))
        slots.insert(slots.end(), cell.begin(), cell.end());
    const std::int32_t elements = g.nx * g.ny;
    problem["to.coordinates_" + tag] = integerRecords({nodes, 1}) + integerRecord(linkToPm) +
                                       integerRecord(linkFromPm) + furtherCoordinates;
    problem["to.elements_" + tag] = integerRecords({4, elements}) + integerRecord(slots) +
                                    integerRecord(Integers(static_cast<std::size_t>(elements), 7)) +
                                    furtherElements;
}

Problem brickProblem(const Grid& g) {
    const std::int32_t sheetNodes = nodesOf(g), cells = g.nx * g.ny;
    const std::int32_t nodes = sheetNodes * (g.layers + 1), bricks = cells * g.layers;
    Reals xyz;
    for (int node = 0, sheet = 0, z = 0; node < nodes; ++node) {
        if (node / sheetNodes > sheet) z += ++sheet;
        for (const int value : {node % (g.nx + 1), node % sheetNodes / (g.nx + 1), z})
            xyz.push_back(value);
    }
    Integers slots, zones;
    for (int layer = 0; layer < g.layers; ++layer)
        for (const Integers& lower : cellsOf(g, 1 + layer * sheetNodes)) {
            for (const int up : {0, sheetNodes})
                for (const std::int32_t node : lower) slots.push_back(node + up);
            zones.push_back(layer + 1);
        }
    Problem problem;
    problem["batch.pfx"] = "t\n";
    problem["t.skiv"] = "";
    problem["to.gen"] = textRecord("2918", 80) + integerRecord({1}) +
                        textRecord("Stack of bricks", 60) + integerRecord({0});
    problem["to.coordinates_pm"] =
        integerRecord({nodes}) + realRecord(xyz) + integerRecord({0, 0, g.layers + 1});
    problem["to.elements_pm"] =
        integerRecords({8, bricks}) + integerRecord(slots) + integerRecord(zones);
    addSheetDomain(problem, g, "olf", nodes, integerRecord({0}),
                   integerRecord(Integers(static_cast<std::size_t>(cells))) + integerRecord({0}));
    const double ground = g.layers * (g.layers + 1) / 2.0;
    for (int t = 0; t < g.times; ++t) {
        const std::string time = std::to_string(10 * t) + ".0";
        const std::string suffix = ".000" + std::to_string(t + 1);
        Reals surface;
        for (int i = 0; i < sheetNodes; ++i) surface.push_back(ground + 0.5 - 0.5 * i + 0.25 * t);
        problem["to.head_olf" + suffix] = resultFile(time, {surface});
        const Reals heads(static_cast<std::size_t>(nodes), ground - 0.5 + 0.25 * t);
        problem["to.head_pm" + suffix] = resultFile(time, {heads});
    }
    return problem;
}

Problem twoTimes() {
    Problem problem = brickProblem({1, 1, 1, 2});
    problem["t.plot.control"] =
        "tecplot mode\nend\nwrite pm domain file\ninclude more\nend\nwrite olf domain file\n";
    problem["more"] = "truncate pm domain\n0 1\n0 1\n0 1\n";
    problem["to.sat_pm.0001"] = resultFile("0.0", {Singles(12, 0.5F)}); // more values than nodes
    return problem;
}

Problem appendedTimes(int times) {
    Problem problem = brickProblem({2, 1, 1, times});
    for (int t = 1; t <= times; t += 2)
        problem["to.sat_pm.000" + std::to_string(t)] =
            resultFile("0.0", {Singles(12, 0.1F * static_cast<float>(t))});
    return problem;
}

void addDual(Problem& problem, std::int32_t nodes) {
    Integers same;
    for (std::int32_t node = 1; node <= nodes; ++node) same.push_back(node);
    problem["to.coordinates_dual"] =
        integerRecords({nodes, 0}) + integerRecord(same) + integerRecord(same);
    problem["to.elements_dual"] = problem["to.elements_pm"];
}

void patch(Bytes& file, int number, int index, std::int32_t value) {
    std::size_t at = 0;
    std::int32_t length = 0;
    for (int i = 0; std::memcpy(&length, file.data() + at, 4), i < number; ++i)
        at += static_cast<std::size_t>(length) + 8;
    if (index * 4 >= length) throw std::out_of_range("no such word in the record");
    std::memcpy(file.data() + at + 4 + static_cast<std::size_t>(index) * 4, &value, 4);
}

void put(const std::string& path, std::string_view contents) {
    std::ofstream(path, std::ios::binary) << contents;
}

void write(const Problem& problem) {
    for (const auto& [name, contents] : problem) put(name, contents);
}

Bytes get(const std::string& path) {
    std::ostringstream contents;
    contents << std::ifstream(path, std::ios::binary).rdbuf();
    return contents.str();
}

std::set<std::string> filesHere() {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("."))
        if (entry.path().filename().string()[0] != '.') names.insert(entry.path().filename());
    return names;
}

Bytes getDated(const std::string& path) {
    Bytes contents = get(path);
    const std::string name = "Date_Created";
    Bytes wideName; // in characters of four bytes
    for (const char c : name) wideName += Bytes{c, 0, 0, 0};
    if (const std::size_t at = contents.find(wideName); at != Bytes::npos)
        return contents.erase(at + wideName.size(), 120);
    const std::size_t at = contents.find(name + "=\"");
    if (at == Bytes::npos) return contents;
    const std::size_t value = at + name.size() + 2;
    return contents.erase(value, contents.find('"', value) - value);
}

Bytes expected(const std::string& name) {
    return get(EXPECTED_FOLDER + name);
}

void expectFile(const std::string& name, const std::string& text) {
    if (std::getenv("MESHRAKE_REWRITE_EXPECTED"))
        put(EXPECTED_FOLDER + name, text);
    else
        EXPECT_EQ(text, expected(name)) << name;
}

Folder::Folder() : before(std::filesystem::current_path()) {
    // In memory if possible, because tests replace files thousands of times.
    const bool inMemory = access("/dev/shm", W_OK) == 0;
    const std::filesystem::path parent =
        inMemory ? "/dev/shm" : std::filesystem::temp_directory_path();
    std::string name = parent / "meshrake_XXXXXX";
    if (!mkdtemp(name.data())) throw std::runtime_error("no folder for the test");
    path = name;
    std::filesystem::current_path(path);
}

Folder::~Folder() {
    std::filesystem::current_path(before);
    std::filesystem::remove_all(path);
}

void makeProblem(const std::string& options) {
    const std::string command = MAKE_PROBLEM_PROGRAM " --prefix t " + options + " . >.made";
    ASSERT_EQ(std::system(command.c_str()), 0);
}

} // namespace sample_files
