#include "companion/xdmf/index.hpp"

#include "companion/screen/screen.hpp"
#include "companion/xdmf/xml_text.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <stdexcept>

namespace xdmf {

namespace {

using data_set_file::Zone;
using Zones = std::vector<std::size_t>; // by their numbers, from 0

void checkZone(const Block& block, std::size_t number) {
    const Zone& zone = block.set.zones[number];
    const std::string where = block.path + ": zone " + std::to_string(number + 1);
    if (zone.strand >= 0 && !std::isfinite(zone.time))
        throw std::runtime_error(where + " has a time that is not a number");
    for (const std::size_t coordinate : block.coordinates)
        if (zone.centred[coordinate])
            throw std::runtime_error(where + " has coordinates of elements");
}

void checkBlocks(const std::vector<Block>& blocks) {
    bool anyNodes = false;
    for (const Block& block : blocks) {
        for (std::size_t z = 0; z < block.set.zones.size(); ++z) {
            checkZone(block, z);
            anyNodes = anyNodes || block.set.zones[z].nodes > 0;
        }
    }
    if (!anyNodes) throw std::runtime_error(blocks.at(0).path + ": no complete zone with nodes");
}

std::set<double> timesOf(const std::vector<Block>& blocks) {
    std::set<double> times;
    for (const Block& block : blocks)
        for (const Zone& zone : block.set.zones)
            if (zone.strand >= 0) times.insert(zone.time);
    return times;
}

// Data sets with the same name have that of their file.
std::vector<std::string> blockNames(const std::vector<Block>& blocks) {
    std::vector<std::string> names;
    std::set<std::string> unique;
    for (const Block& block : blocks) {
        names.push_back(block.xmlTitle);
        unique.insert(block.xmlTitle);
    }
    if (unique.size() < blocks.size())
        for (std::size_t b = 0; b < blocks.size(); ++b) names[b] = blocks[b].xmlFile;
    return names;
}

std::string timeElement(double time) {
    return "<Time Value=\"" + screen::numberText(time) + "\"/>\n";
}

void beginCollection(std::string& out, const std::string& xmlName, const char* type) {
    out.append("<Grid Name=\"")
        .append(xmlName)
        .append("\" GridType=\"Collection\" CollectionType=\"")
        .append(type)
        .append("\">\n");
}

void appendGrids(std::string& out, const Block& block, const Zones& zones,
                 const std::string& time) {
    for (const std::size_t z : zones)
        appendGrid(out, block, z, xmlName(block.set.zones[z].title), time);
}

void appendTimes(std::string& out, const Block& block, const std::map<double, Zones>& zones,
                 const std::set<double>& times) {
    for (const double time : times) {
        const auto found = zones.find(time);
        if (found != zones.end()) {
            appendGrids(out, block, found->second, timeElement(time));
        } else {
            beginCollection(out, "none", "Spatial");
            out += timeElement(time) + "</Grid>\n";
        }
    }
}

void appendBlock(std::string& out, const Block& block, const std::string& name,
                 const std::set<double>& times) {
    std::map<double, Zones> atTimes;
    Zones atAllTimes;
    for (std::size_t z = 0; z < block.set.zones.size(); ++z) {
        const Zone& zone = block.set.zones[z];
        if (zone.nodes > 0) (zone.strand < 0 ? atAllTimes : atTimes[zone.time]).push_back(z);
    }
    if (atTimes.empty() && atAllTimes.size() == 1) {
        appendGrid(out, block, atAllTimes[0], name, "");
        return;
    }
    beginCollection(out, name, atTimes.empty() ? "Spatial" : "Temporal");
    if (!atTimes.empty()) appendTimes(out, block, atTimes, times);
    appendGrids(out, block, atAllTimes, "");
    out += "</Grid>\n";
}

} // namespace

std::string indexOf(const std::vector<Block>& blocks) {
    checkBlocks(blocks);
    const std::set<double> times = timesOf(blocks);
    const std::vector<std::string> names = blockNames(blocks);
    std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<Xdmf Version=\"2.0\">\n<Domain>\n";
    if (blocks.size() > 1) beginCollection(out, "domains", "Spatial");
    for (std::size_t b = 0; b < blocks.size(); ++b) appendBlock(out, blocks[b], names[b], times);
    if (blocks.size() > 1) out += "</Grid>\n";
    return out + "</Domain>\n</Xdmf>\n";
}

} // namespace xdmf
