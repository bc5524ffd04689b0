#include "tvncommon/TVNBinaryFile.hpp"

#include "tests/runs.hpp"
#include "tvncommon/io_layer.hpp"

#include <array>
#include <map>

namespace {

using namespace TVNBinaryFile;
using runs::expectEnd;
using sample_files::Bytes;
using sample_files::Integers;
using sample_files::Reals;

class BinaryFile : public testing::Test {
protected:
    ~BinaryFile() override { io_layer::reset(); }
    sample_files::Folder folder;
};

std::string padded(std::string text, std::size_t length = 80) {
    text.resize(length, ' ');
    return text;
}

std::string newer(const std::string& text, const std::string& rest) {
    return padded(text, 55) + "#!TVN" + rest;
}

TEST_F(BinaryFile, HeadersThatAreFine) {
    struct Case {
        std::string header, timestamp, message;
    };
    const std::string rest = "001LER08030000000012", front(53, 't');
    const Case cases[] = {{newer("10.5 a free message", rest), "10.5", "a free message"},
                          {newer("10.5   message", rest), "10.5", "  message"},
                          {newer(front + " m", rest), front, "m"}};
    for (const Case& c : cases) {
        const BinaryHeader h = parseTVNBinFileHeader(c.header, "file");
        EXPECT_EQ(std::tuple(h.timestamp, h.message, h.isOldFormat),
                  std::tuple(c.timestamp, c.message, false));
        EXPECT_EQ(std::tuple(h.magic, h.formatVersion, h.byteOrder, h.dataType),
                  std::tuple("#!TVN", 1, "LE", "R08"));
        EXPECT_EQ(std::pair(h.numComponents, h.numValues), std::pair(3, 12));
        EXPECT_TRUE(isNewerFileFormat(c.header));
    }
    const BinaryHeader h = parseTVNBinFileHeader(padded(" 10.5 older"), "file");
    EXPECT_EQ(std::tuple(h.timestamp, h.isOldFormat, h.formatVersion, h.byteOrder, h.dataType),
              std::tuple(" 10.5", true, -1, "UK", "UNK"));
    EXPECT_TRUE(parseTVNBinFileHeader(padded(padded("1", 55) + "#!tvn"), "file").isOldFormat);
    EXPECT_FALSE(isNewerFileFormat(padded("1", 55) + "#!TV"));
}

TEST_F(BinaryFile, HeadersThatAreNot) {
    const std::string invalid = "Invalid binary file header format. Timestamp ";
    const std::string status59 =
        "\nError detail: Invalid data format during list-directed input\nError number: 59\n";
    const auto parse = [](const std::string& what) {
        return "Failed to parse " + what + "\"\nFile: file";
    };
    const std::map<std::string, std::string> cases = {
        {std::string(79, 'x'), "Binary file header is too short. Expected at least 80 characters "
                               "but found only 79.\nFile: file\n"},
        {newer(std::string(54, ' ') + "1", "001LER08010000000001"),
         invalid + "missing or malformed.\nFile: file\n"},
        {newer(std::string(54, '1'), "001LER08010000000001"),
         invalid + "not terminated by space.\nFile: file\n"},
        {newer("1", "0x1LER08010000000001"),
         parse("file version number from binary file header. String: \"0x1") + status59},
        {newer("1", "001LER081.0000000001"),
         parse("number of components from binary file header. String: \"1.") + status59},
        {newer("1", "001LER08000000000001"),
         "Invalid number of components in binary file header: 0\nFile: file\n"},
        {newer("1", "001LER08019999999999"),
         parse("number of values from binary file header. String: \"9999999999") + status59},
        {newer("1", "001LER0801        -7"),
         "Invalid number of values in binary file header: -7\nFile: file\n"}};
    for (const auto& c : cases)
        expectEnd("FATAL", c.second, [&] { parseTVNBinFileHeader(c.first, "file"); });
}

// Components of values.
std::vector<Reals> componentsOf(std::size_t components, std::size_t n) {
    return std::vector(components, Reals(n, 1.25));
}

Bytes olderFile(const std::vector<Reals>& components) {
    Bytes file = sample_files::textRecord("1.0 older", 80);
    for (std::size_t i = 0; i < components[0].size(); ++i) {
        Reals node;
        for (const Reals& component : components) node.push_back(component[i]);
        file += sample_files::realRecord(node);
    }
    return file;
}

void read(int components, std::int32_t n) {
    std::vector<Reals> all(static_cast<std::size_t>(components), Reals(8));
    std::array<double*, 6> arrays{};
    for (std::size_t c = 0; c < all.size(); ++c) arrays[c] = all[c].data();
    if (components == 1)
        read_r8_1d("file", n, arrays[0]);
    else
        read_r8_components("file", n, components, arrays.data());
}

TEST_F(BinaryFile, FilesThatAreTooShort) {
    const std::string cut =
        " file\nError detail: Error encountered during read statement\nError number: 39\n";
    const std::string atEnd =
        " file\nError detail: End-of-file encountered on read\nError number: -1\n";
    const Bytes header = sample_files::header("1.0", "R08", 3, 5);
    const std::vector<Reals> good = componentsOf(3, 5),
                             shortSecond = {good[0], {1, 2, 3, 4}, good[2]};
    const std::tuple<Bytes, int, std::string> cases[] = {
        {"", 1, "Error reading header from file" + atEnd},
        {sample_files::textRecord("1.0", 79), 3, "Error reading header from file" + cut},
        {header, 1, "Error reading values from file" + atEnd},
        {sample_files::resultFile("1.0", componentsOf(1, 4)), 1,
         "Error reading values from file" + cut},
        {sample_files::resultFile("1.0", shortSecond), 3,
         "Error reading component 2 values from file" + cut},
        {sample_files::resultFile("1.0", componentsOf(2, 5)), 3,
         "Error reading component 3 values from file" + atEnd},
        {olderFile(componentsOf(3, 4)), 3, "Error reading values from file" + atEnd}};
    for (const auto& [contents, components, message] : cases) {
        sample_files::put("file", contents);
        expectEnd("INPUT", message, [&, n = components] { read(n, 5); });
    }
    std::filesystem::remove("file");
    expectEnd("FATAL", "Failed to open file: file\n", [] { read(1, 0); });
}

} // namespace
