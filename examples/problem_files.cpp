#include "examples/problem_files.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <iterator>

#include "examples/record_file.hpp"

namespace problem_files {

using problem_domains::Domain;
using problem_domains::Tag;
using problem_species::Species;
using problem_variables::Family;
using problem_variables::Location;
using problem_variables::Type;
using problem_variables::Variable;
using problem_weather::Weather;
using record_file::RecordFile;

namespace {

struct UnitSystem {
    double perMetre;
    double seconds;
};

// By handle. The order of day and hour differs between the metre and the centimetre systems.
constexpr std::array<UnitSystem, 10> unitSystems = {{
    {1, 1},
    {1, 60},
    {1, 3600},
    {1, 86400},
    {1, 31536000},
    {100, 1},
    {100, 60},
    {100, 86400},
    {100, 3600},
    {100, 31536000},
}};

const UnitSystem& units(const Problem& problem) {
    return unitSystems[static_cast<std::size_t>(problem.unitSystem)];
}

const char* tagName(const Domain& domain) {
    return problem_domains::names[static_cast<std::size_t>(domain.tag)];
}

std::string filePath(const Problem& problem, const std::string& rest) {
    return problem.directory + "/" + problem.prefix + rest;
}

RecordFile create(const Problem& problem, const std::string& rest) {
    return record_file::create(filePath(problem, "o." + rest), problem.maximumSubRecordBytes);
}

void close(Problem& problem, RecordFile& file) {
    problem.bytes += record_file::close(file);
    ++problem.files;
}

void writeSpecies(Problem& problem) {
    const std::vector<Species>& list = problem.species;
    const auto mobile = static_cast<std::int32_t>(
        std::count_if(list.begin(), list.end(), [](const Species& s) { return s.mobile; }));
    RecordFile file = create(problem, "species");
    record_file::int32Record(file, mobile);
    record_file::int32Record(file, static_cast<std::int32_t>(list.size()) - mobile);
    for (const Species& species : list) record_file::textRecord(file, species.name, 50);
    for (const Species& species : list)
        if (species.mobile) record_file::logicalRecord(file, species.heat);
    for (const Species& species : list)
        if (species.mobile) record_file::logicalRecord(file, species.particles);
    close(problem, file);
}

void writeOrigins(Problem& problem) {
    RecordFile file = create(problem, "hmc");
    for (const std::int32_t setting : {1, 2, 1}) record_file::int32Record(file, setting);
    record_file::logicalRecord(file, true);
    record_file::int32Record(file, static_cast<std::int32_t>(problem.origins->size()));
    for (const std::int32_t setting : {1, 0}) record_file::int32Record(file, setting);
    for (const Species& origin : *problem.origins) {
        record_file::textRecord(file, origin.name, 80);
        record_file::int32Record(file, origin.number + 1);
        record_file::int32Record(file, 0);
    }
    close(problem, file);
}

void writePmCoordinates(Problem& problem, RecordFile& file) {
    const problem_mesh::Mesh& mesh = problem.mesh;
    const double scale = units(problem).perMetre;
    record_file::beginRecord(file, std::uint64_t{24} *
                                       static_cast<std::uint64_t>(problem_mesh::nodeCount(mesh)));
    for (const double depth : mesh.sheetDepth) {
        for (const problem_mesh::Column& column : mesh.columns) {
            record_file::putReal64(file, scale * column.x);
            record_file::putReal64(file, scale * column.y);
            record_file::putReal64(file, scale * problem_mesh::elevation(column, depth));
        }
    }
    record_file::int32ListRecord(file, {mesh.nx, mesh.ny, mesh.layers + 1});
}

void writeLinks(const Problem& problem, const Domain& domain, RecordFile& file) {
    std::vector<std::int32_t> fromPm(
        static_cast<std::size_t>(problem_mesh::nodeCount(problem.mesh)));
    // From the last node to the first, so that a node of pm is linked to the first of two doubled
    // nodes.
    for (std::size_t node = domain.pmNode.size(); node > 0; --node)
        fromPm[static_cast<std::size_t>(domain.pmNode[node - 1]) - 1] =
            domain.nodeOffset + static_cast<std::int32_t>(node);
    record_file::int32Record(file, domain.sharesNodes ? 0 : 1);
    record_file::int32ListRecord(file, domain.pmNode);
    record_file::int32ListRecord(file, fromPm);
}

void writeWallNodes(const Domain& olf, RecordFile& file) {
    const std::size_t nodes = olf.pmNode.size();
    const std::size_t doubles = nodes - olf.doubledNodes.size();
    std::vector<std::int32_t> flags(nodes);
    std::vector<std::int32_t> sides(2 * nodes);
    std::vector<std::int32_t> walls(nodes);
    for (std::size_t k = 0; k < olf.doubledNodes.size(); ++k) {
        const auto near = static_cast<std::size_t>(olf.doubledNodes[k]) - 1;
        const std::size_t far = doubles + k;
        flags[near] = -1;
        sides[near] = olf.nodeOffset + static_cast<std::int32_t>(near) + 1;
        sides[nodes + near] = olf.nodeOffset + static_cast<std::int32_t>(far) + 1;
        walls[near] = 1;
        walls[far] = 1;
    }
    record_file::int32Record(file, 1);
    record_file::int32Record(file, 2);
    record_file::int32ListRecord(file, flags);
    record_file::int32ListRecord(file, sides);
    record_file::int32ListRecord(file, walls);
}

void writeCoordinates(Problem& problem, const Domain& domain) {
    RecordFile file = create(problem, std::string("coordinates_") + tagName(domain));
    record_file::int32Record(file, problem_domains::nodeCount(problem.mesh, domain));
    if (domain.tag == Tag::pm) {
        writePmCoordinates(problem, file);
    } else {
        writeLinks(problem, domain, file);
    }
    if (domain.tag == Tag::olf) {
        record_file::logicalRecord(file, problem.walls);
        if (problem.walls) writeWallNodes(domain, file);
    }
    close(problem, file);
}

// Writes the lists of pm and dual, which contain every element of the mesh.
void writeMeshElements(const Problem& problem, const Domain& domain, RecordFile& file) {
    const problem_mesh::Mesh& mesh = problem.mesh;
    const std::int32_t elements = problem_mesh::elementCount(mesh);
    record_file::int32Record(file, elements);
    record_file::beginRecord(file, std::uint64_t{4} * static_cast<std::uint64_t>(elements) *
                                       static_cast<std::uint64_t>(domain.nodesPerElement));
    std::array<std::int32_t, 8> nodes{};
    for (std::int32_t element = 0; element < elements; ++element) {
        const std::int32_t used = problem_mesh::elementNodes(mesh, element, nodes.data());
        for (std::int32_t k = 0; k < used; ++k)
            record_file::putInt32(file, nodes[static_cast<std::size_t>(k)]);
    }
    record_file::beginRecord(file, std::uint64_t{4} * static_cast<std::uint64_t>(elements));
    for (std::int32_t element = 0; element < elements; ++element)
        record_file::putInt32(file, problem_domains::fileZone(mesh, domain.tag, element));
}

void writeWallElements(const Problem& problem, const Domain& olf, RecordFile& file) {
    const problem_mesh::Mesh& mesh = problem.mesh;
    std::vector<std::int32_t> adjacentWall;
    std::vector<std::int32_t> side;
    const std::int32_t cellsPerQuad = mesh.prisms ? 2 : 1;
    const problem_mesh::WallLine wall = problem_mesh::wallLine(mesh);
    for (std::int32_t cell = 0; cell < static_cast<std::int32_t>(mesh.cells.size()); ++cell) {
        const std::int32_t i = cell / cellsPerQuad % mesh.nx;
        const bool touches = olf.centres[static_cast<std::size_t>(cell)].column.wall;
        adjacentWall.push_back(problem.walls && touches ? 1 : 0);
        side.push_back(i < wall.i ? 1 : 2);
    }
    record_file::int32ListRecord(file, adjacentWall);
    record_file::logicalRecord(file, problem.walls);
    if (problem.walls) record_file::int32ListRecord(file, side);
}

void writeFractures(const Problem& problem, const Domain& frac, RecordFile& file) {
    record_file::int32ListRecord(file, frac.sideElements);
    record_file::beginRecord(file, std::uint64_t{8} * frac.aperture.size());
    for (const double aperture : frac.aperture)
        record_file::putReal64(file, units(problem).perMetre * aperture);
}

void writeElements(Problem& problem, const Domain& domain) {
    RecordFile file = create(problem, std::string("elements_") + tagName(domain));
    record_file::int32Record(file, domain.nodesPerElement);
    if (domain.tag == Tag::pm || domain.tag == Tag::dual) {
        writeMeshElements(problem, domain, file);
    } else {
        record_file::int32Record(file, problem_domains::elementCount(problem.mesh, domain));
        record_file::int32ListRecord(file, domain.elementNodes);
        record_file::int32ListRecord(file, domain.elementZone);
    }
    if (domain.tag == Tag::olf) writeWallElements(problem, domain, file);
    if (domain.tag == Tag::frac) writeFractures(problem, domain, file);
    close(problem, file);
}

std::string zeroPadded(std::int64_t number, std::size_t digits) {
    const std::string text = std::to_string(number);
    return text.size() < digits ? std::string(digits - text.size(), '0') + text : text;
}

std::string timeStamp(double time) {
    std::array<char, 64> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), time, std::chars_format::fixed).ptr;
    std::string stamp(text.data(), end);
    return stamp.find('.') == std::string::npos ? stamp + ".0" : stamp;
}

const char* typeCode(Type type) {
    switch (type) {
    case Type::real64:
        return "R08";
    case Type::real32:
        return "R04";
    case Type::int32:
        return "I04";
    }
    return "";
}

void writeHeader(const Problem& problem, const Variable& variable, const Weather& weather,
                 std::int32_t count, RecordFile& file) {
    std::string text = timeStamp(weather.time / units(problem).seconds) + " " + variable.meaning;
    text.resize(55, ' ');
    if (!problem.olderGeneration)
        text += "#!TVN001LE" + std::string(typeCode(variable.type)) +
                zeroPadded(variable.components, 2) + zeroPadded(count, 10);
    record_file::textRecord(file, text, 80);
}

// Factor from SI units to those of the problem. For heat, degrees replace a concentration and W/m2
// a flux. Neither has a length unit, and W/m2 = kg/s3 has three powers of time.
double unitScale(const Problem& problem, const Variable& variable, const Species* species) {
    double lengthPower = variable.lengthPower;
    double timePower = variable.timePower;
    if (species != nullptr && species->heat) {
        lengthPower = 0;
        timePower *= 3;
    }
    return std::pow(units(problem).perMetre, lengthPower) *
           std::pow(units(problem).seconds, -timePower);
}

// The species or origins for which the variable has files. A variable with only one file yields
// one species without a name.
std::vector<Species> members(const Problem& problem, const Variable& variable) {
    const auto belongs = [&variable](const Species& species) {
        switch (variable.family) {
        case Family::mobile:
            return species.mobile;
        case Family::heat:
            return species.heat;
        case Family::particles:
            return species.particles;
        default:
            return true;
        }
    };
    if (variable.family == Family::oneFile || variable.family == Family::originSums) return {{}};
    std::vector<Species> chosen;
    const auto& list = variable.family == Family::origins ? *problem.origins : problem.species;
    std::copy_if(list.begin(), list.end(), std::back_inserter(chosen), belongs);
    return chosen;
}

// Returns the path without the time index.
std::string resultPath(const Problem& problem, const Variable& variable, const Domain& domain,
                       const Species& species) {
    const bool ofOrigins =
        variable.family == Family::origins || variable.family == Family::originSums;
    std::string path =
        problem.directory + (ofOrigins ? "/hmc/" : "/") + problem.prefix + "o." + variable.stem;
    if (path.back() == '.') return path;
    path += tagName(domain);
    if (!species.name.empty()) path += (ofOrigins ? ".f_" : ".") + species.name;
    return path + variable.tail + ".";
}

void putValue(RecordFile& file, Type type, double value) {
    switch (type) {
    case Type::real64:
        return record_file::putReal64(file, value);
    case Type::real32:
        return record_file::putReal32(file, static_cast<float>(value));
    case Type::int32:
        return record_file::putInt32(file, static_cast<std::int32_t>(value));
    }
}

void writeValues(const Problem& problem, const Variable& variable, const Domain& domain,
                 const Species* species, const Weather& weather, std::int32_t count,
                 RecordFile& file) {
    const double scale = unitScale(problem, variable, species);
    const bool nodal = variable.location == Location::node;
    const auto put = [&](std::int32_t position, int component) {
        problem_domains::Place place =
            nodal ? problem_domains::nodePlace(problem.mesh, domain, position)
                  : problem_domains::elementPlace(problem.mesh, domain, position);
        place.species = species;
        putValue(file, variable.type, scale * variable.field(place, weather, component));
    };
    const std::uint64_t size = variable.type == Type::real64 ? 8 : 4;
    if (problem.olderGeneration && variable.components > 1) {
        for (std::int32_t position = 0; position < count; ++position) {
            record_file::beginRecord(file, size * static_cast<std::uint64_t>(variable.components));
            for (int component = 0; component < variable.components; ++component)
                put(position, component);
        }
        return;
    }
    for (int component = 0; component < variable.components; ++component) {
        record_file::beginRecord(file, size * static_cast<std::uint64_t>(count));
        for (std::int32_t position = 0; position < count; ++position) put(position, component);
    }
}

} // namespace

double perMetre(const Problem& problem) {
    return units(problem).perMetre;
}

void writeText(Problem& problem, const std::string& name, const std::string& text) {
    RecordFile file =
        record_file::create(problem.directory + "/" + name, problem.maximumSubRecordBytes);
    record_file::plainText(file, text);
    close(problem, file);
}

void writeDescription(Problem& problem) {
    writeText(problem, "batch.pfx", problem.prefix + "\n");
    writeText(problem, problem.prefix + ".skiv",
              "Hill slope catchment with a stream: rain, infiltration and recession\n");
    RecordFile file = create(problem, "gen");
    record_file::textRecord(file, "2918", 80);
    record_file::int32Record(file, 2);
    record_file::beginRecord(file, 120);
    record_file::putText(file, "Hill slope catchment with a stream", 60);
    record_file::putText(file, "Storms, infiltration and recession, hour by hour", 60);
    record_file::int32Record(file, problem.unitSystem);
    close(problem, file);
    if (!problem.species.empty()) writeSpecies(problem);
    if (problem.origins) writeOrigins(problem);
}

void writeMesh(Problem& problem) {
    for (const Domain& domain : problem.domains) {
        writeCoordinates(problem, domain);
        writeElements(problem, domain);
    }
}

void writeResults(Problem& problem, const Variable& variable, const Weather& weather,
                  std::int32_t index) {
    using problem_variables::When;
    if (variable.when == When::first && index > 1) return;
    if (variable.when == When::later && index == 1) return;
    const std::string suffix = zeroPadded(index, static_cast<std::size_t>(problem.suffixDigits));
    const std::vector<Species> of = members(problem, variable);
    for (const Domain& domain : problem.domains) {
        if ((variable.domains & problem_domains::bit(domain.tag)) == 0) continue;
        if (domain.sharesNodes && problem_variables::isAtNodesOfPm(variable)) continue;
        const std::int32_t count = variable.location == Location::node
                                       ? problem_domains::nodeCount(problem.mesh, domain)
                                       : problem_domains::elementCount(problem.mesh, domain);
        for (const Species& species : of) {
            RecordFile file =
                record_file::create(resultPath(problem, variable, domain, species) + suffix,
                                    problem.maximumSubRecordBytes);
            writeHeader(problem, variable, weather, count, file);
            writeValues(problem, variable, domain, &species, weather, count, file);
            close(problem, file);
        }
    }
}

} // namespace problem_files
