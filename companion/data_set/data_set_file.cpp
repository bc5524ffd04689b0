#include "companion/data_set/data_set_file.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <stdexcept>

namespace data_set_file {

namespace {

constexpr std::array<std::int64_t, 6> slotsOfType{0, 2, 3, 4, 4, 8};

struct File {
    std::istream& in;
    std::int64_t size = 0;
    std::int64_t position = 0;

    void takeSize() {
        in.seekg(0, std::ios::end);
        size = in.tellg();
        in.seekg(position);
    }

    void want(bool holds, const char* what) const {
        if (!holds) throw std::runtime_error("byte " + std::to_string(position) + ": " + what);
    }

    template<class T>
    std::vector<T> many(std::int64_t count) {
        want(count >= 0 && count <= (size - position) / static_cast<std::int64_t>(sizeof(T)),
             "the file has fewer values");
        std::vector<T> values(static_cast<std::size_t>(count));
        take(values.data(), count);
        return values;
    }

    template<class T = std::int32_t>
    T one() {
        T value{};
        want(size - position >= static_cast<std::int64_t>(sizeof(T)), "the file ends");
        take(&value, 1);
        return value;
    }

    template<class T>
    void take(T* values, std::int64_t count) {
        const std::int64_t bytes = count * static_cast<std::int64_t>(sizeof(T));
        in.read(reinterpret_cast<char*>(values), bytes);
        position += bytes;
    }

    void wantInt(std::int32_t value, const char* what) { want(one() == value, what); }

    std::int32_t oneOf(std::int32_t least, std::int64_t greatest, const char* what) {
        const std::int32_t value = one();
        want(least <= value && value <= greatest, what);
        return value;
    }

    std::string text() {
        std::string result;
        while (const std::int32_t c = oneOf(0, 255, "no character")) result += static_cast<char>(c);
        return result;
    }
};

Zone readHeader(File& file, std::int64_t variables) {
    Zone zone;
    zone.title = file.text();
    file.wantInt(-1, "a parent zone");
    zone.strand = file.one();
    zone.time = file.one<double>();
    file.one(); // colour
    zone.type = file.oneOf(0, 5, "no zone type");
    zone.centred.assign(static_cast<std::size_t>(variables), false);
    if (file.oneOf(0, 1, "no flag of locations") == 1)
        for (std::size_t v = 0; v < zone.centred.size(); ++v)
            zone.centred[v] = file.oneOf(0, 1, "no location") == 1;
    file.wantInt(0, "raw face neighbours");
    file.wantInt(0, "face neighbours");
    zone.nodes = file.one();
    zone.elements = file.one();
    for (const std::int32_t zero : file.many<std::int32_t>(4))
        file.want(zero == 0, "cell dimensions or auxiliary values");
    return zone;
}

template<class T>
std::vector<double> widened(const std::vector<T>& values) {
    return {values.begin(), values.end()};
}

std::vector<double> readValues(File& file, std::int32_t type, std::int64_t count) {
    if (type == 1) return widened(file.many<float>(count));
    if (type == 2) return file.many<double>(count);
    return widened(file.many<std::int32_t>(count));
}

void checkRange(File& file, const std::vector<double>& values, double least, double greatest) {
    std::vector<double> numbers;
    std::copy_if(values.begin(), values.end(), std::back_inserter(numbers),
                 [](double value) { return !std::isnan(value); });
    if (numbers.empty()) numbers = {0};
    const auto [low, high] = std::minmax_element(numbers.begin(), numbers.end());
    file.want(*low == least && *high == greatest, "the range of the values before is another");
}

void readData(File& file, Zone& zone, std::int64_t earlier) {
    const std::size_t variables = zone.centred.size();
    file.want(file.one<float>() == 299.0F, "no marker of a zone's data");
    for (std::size_t v = 0; v < variables; ++v) zone.types.push_back(file.oneOf(1, 3, "no type"));
    file.wantInt(0, "passive variables");
    zone.shares.assign(variables, 0);
    if (file.oneOf(0, 1, "no flag of shares") == 1)
        for (std::int32_t& share : zone.shares)
            share = file.oneOf(-1, earlier - 1, "no zone to share with") + 1;
    zone.connectivityShare = file.oneOf(-1, earlier - 1, "no zone of node lists") + 1;

    const auto own = std::count(zone.shares.begin(), zone.shares.end(), 0);
    const std::vector<double> ranges = file.many<double>(2 * own);
    zone.values.resize(variables);
    for (std::size_t v = 0, range = 0; v < variables; ++v) {
        if (zone.shares[v] > 0) continue;
        zone.values[v] =
            readValues(file, zone.types[v], zone.centred[v] ? zone.elements : zone.nodes);
        checkRange(file, zone.values[v], ranges[range], ranges[range + 1]);
        range += 2;
    }
    if (zone.connectivityShare > 0) return;
    zone.elementNodes =
        file.many<std::int32_t>(zone.elements * slotsOfType[static_cast<std::size_t>(zone.type)]);
    for (std::int32_t& node : zone.elementNodes) ++node;
}

void readHead(File& file, DataSet& set) {
    const std::vector<char> magic = file.many<char>(8);
    file.want(std::string(magic.begin(), magic.end()) == "#!TDV112", "not the layout's magic");
    file.wantInt(1, "another byte order");
    file.wantInt(0, "another file type");
    set.title = file.text();
    set.variables.resize(
        static_cast<std::size_t>(file.oneOf(0, file.size / 4, "no number of variables")));
    for (std::string& name : set.variables) name = file.text();
}

void readAux(File& file, DataSet& set, bool ofVariable) {
    const std::int32_t variable = ofVariable ? file.one() + 1 : 0;
    const std::string name = file.text();
    file.wantInt(0, "a value that is no text");
    const std::string value = file.text();
    if (value.find_first_not_of(' ') == std::string::npos)
        set.padding += 4 * static_cast<std::int64_t>(value.size());
    else if (ofVariable)
        set.units[variable] = value;
    else
        set.aux[name] = value;
}

} // namespace

DataSet read(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return read(in);
}

DataSet read(std::istream& in) {
    File file{in};
    if (!in) throw std::runtime_error("it cannot be opened");
    file.takeSize();
    DataSet set;
    readHead(file, set);
    for (;;) {
        const auto marker = file.one<float>();
        if (marker == 357.0F) break;
        if (marker == 299.0F)
            set.zones.push_back(readHeader(file, static_cast<std::int64_t>(set.variables.size())));
        else if (marker == 799.0F || marker == 899.0F)
            readAux(file, set, marker == 899.0F);
        else
            file.want(false, "an unknown record");
    }
    file.takeSize(); // the program may have added what the headers tell
    for (std::size_t z = 0; z < set.zones.size(); ++z)
        readData(file, set.zones[z], static_cast<std::int64_t>(z));
    set.trailing = file.size - file.position;
    return set;
}

} // namespace data_set_file
