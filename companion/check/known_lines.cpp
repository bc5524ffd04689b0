#include "companion/check/known_lines.hpp"

#include "meshrake/plot_control/instruction_table.hpp"

#include <algorithm>
#include <map>

namespace check::known_lines {

using model::tags::TagName;
using plot_control::InstructionRow;
using plot_control::Section;

namespace {

using Lines = std::vector<std::string>;

struct KnownLines {
    Lines first, rest;
    std::map<std::string_view, Lines> blocks;                          // by tag of the domain
    std::map<std::string, std::string_view, std::less<>> tagsOfBlocks; // by first line of the block
};

// Options that no line can clear are left out.
Lines linesOfBlock(const TagName& name) {
    Lines lines;
    for (const InstructionRow& row : plot_control::instructionTable())
        if (row.section == Section::domainBlock && (row.domains & name.tag))
            lines.push_back(plot_control::instructionLine(row, name.name));
    for (const model::OptionRow& row : model::optionTable)
        if (row.cleared != model::Option::none) lines.push_back(model::optionLabel(row, name.name));
    return lines;
}

KnownLines collect() {
    KnownLines all;
    for (const InstructionRow& row : plot_control::instructionTable()) {
        if (row.section == Section::first) all.first.emplace_back(row.words);
        if (row.section == Section::afterFirst) all.rest.emplace_back(row.words);
    }
    for (const TagName& name : model::tags::names) {
        if (name.tag == model::tags::addition) continue;
        all.blocks[name.name] = linesOfBlock(name);
        all.rest.push_back(blockLine(name.name));
        all.tagsOfBlocks[blockLine(name.name)] = name.name;
    }
    return all;
}

const KnownLines& known() {
    static const KnownLines all = collect();
    return all;
}

bool contains(const Lines& lines, std::string_view line) {
    return std::ranges::find(lines, line) != lines.end();
}

} // namespace

const std::vector<std::string>& ofFirstSection() {
    return known().first;
}

const std::vector<std::string>& ofBlock(std::string_view tag) {
    return known().blocks.at(tag);
}

const std::vector<std::string>& ofRest() {
    return known().rest;
}

std::string blockLine(std::string_view tag) {
    return "write " + std::string(tag) + " domain file";
}

std::string_view blockTag(std::string_view line) {
    const auto found = known().tagsOfBlocks.find(line);
    return found == known().tagsOfBlocks.end() ? std::string_view() : found->second;
}

bool isKnown(std::string_view line) {
    return line.starts_with("end") || !blockTag(line).empty() || !properSection(line).empty();
}

std::string properSection(std::string_view line) {
    if (contains(known().first, line))
        return "it belongs in the first section, before the first \"end\"";
    for (const auto& [tag, lines] : known().blocks)
        if (contains(lines, line)) return "it belongs in a block \"" + blockLine(tag) + "\"";
    return contains(known().rest, line) ? "it belongs after the first section" : "";
}

} // namespace check::known_lines
