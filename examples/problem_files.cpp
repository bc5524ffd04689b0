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
    double per_metre;
    double seconds;
};

// By handle. Day and hour are in another order among the centimetres than among the metres.
constexpr std::array<UnitSystem, 10> unit_systems = {{
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
    return unit_systems[static_cast<std::size_t>(problem.unit_system)];
}

const char* tag_name(const Domain& domain) {
    return problem_domains::names[static_cast<std::size_t>(domain.tag)];
}

std::string file_path(const Problem& problem, const std::string& rest) {
    return problem.directory + "/" + problem.prefix + rest;
}

RecordFile create(const Problem& problem, const std::string& rest) {
    return record_file::create(file_path(problem, "o." + rest), problem.piece_limit);
}

void close(Problem& problem, RecordFile& file) {
    problem.bytes += record_file::close(file);
    ++problem.files;
}

void write_species(Problem& problem) {
    const std::vector<Species>& list = problem.species;
    const auto mobile = static_cast<std::int32_t>(
        std::count_if(list.begin(), list.end(), [](const Species& s) { return s.mobile; }));
    RecordFile file = create(problem, "species");
    record_file::int32_record(file, mobile);
    record_file::int32_record(file, static_cast<std::int32_t>(list.size()) - mobile);
    for (const Species& species : list) record_file::text_record(file, species.name, 50);
    for (const Species& species : list)
        if (species.mobile) record_file::logical_record(file, species.heat);
    for (const Species& species : list)
        if (species.mobile) record_file::logical_record(file, species.particles);
    close(problem, file);
}

void write_origins(Problem& problem) {
    RecordFile file = create(problem, "hmc");
    for (const std::int32_t setting : {1, 2, 1}) record_file::int32_record(file, setting);
    record_file::logical_record(file, true);
    record_file::int32_record(file, static_cast<std::int32_t>(problem.origins->size()));
    for (const std::int32_t setting : {1, 0}) record_file::int32_record(file, setting);
    for (const Species& origin : *problem.origins) {
        record_file::text_record(file, origin.name, 80);
        record_file::int32_record(file, origin.number + 1);
        record_file::int32_record(file, 0);
    }
    close(problem, file);
}

void write_pm_coordinates(Problem& problem, RecordFile& file) {
    const problem_mesh::Mesh& mesh = problem.mesh;
    const double scale = units(problem).per_metre;
    record_file::begin_record(file, std::uint64_t{24} *
                                        static_cast<std::uint64_t>(problem_mesh::node_count(mesh)));
    for (const double depth : mesh.sheet_depth) {
        for (const problem_mesh::Column& column : mesh.columns) {
            record_file::put_real64(file, scale * column.x);
            record_file::put_real64(file, scale * column.y);
            record_file::put_real64(file, scale * problem_mesh::elevation(column, depth));
        }
    }
    record_file::int32_list_record(file, {mesh.nx, mesh.ny, mesh.layers + 1});
}

void write_links(const Problem& problem, const Domain& domain, RecordFile& file) {
    std::vector<std::int32_t> from_pm(
        static_cast<std::size_t>(problem_mesh::node_count(problem.mesh)));
    // From the last node to the first, so that a node of pm leads to the first of two doubles.
    for (std::size_t node = domain.pm_node.size(); node > 0; --node)
        from_pm[static_cast<std::size_t>(domain.pm_node[node - 1]) - 1] =
            domain.node_offset + static_cast<std::int32_t>(node);
    record_file::int32_record(file, domain.shares_nodes ? 0 : 1);
    record_file::int32_list_record(file, domain.pm_node);
    record_file::int32_list_record(file, from_pm);
}

void write_wall_nodes(const Domain& olf, RecordFile& file) {
    const std::size_t nodes = olf.pm_node.size();
    const std::size_t doubles = nodes - olf.doubled_nodes.size();
    std::vector<std::int32_t> flags(nodes);
    std::vector<std::int32_t> sides(2 * nodes);
    std::vector<std::int32_t> walls(nodes);
    for (std::size_t k = 0; k < olf.doubled_nodes.size(); ++k) {
        const auto near = static_cast<std::size_t>(olf.doubled_nodes[k]) - 1;
        const std::size_t far = doubles + k;
        flags[near] = -1;
        sides[near] = olf.node_offset + static_cast<std::int32_t>(near) + 1;
        sides[nodes + near] = olf.node_offset + static_cast<std::int32_t>(far) + 1;
        walls[near] = 1;
        walls[far] = 1;
    }
    record_file::int32_record(file, 1);
    record_file::int32_record(file, 2);
    record_file::int32_list_record(file, flags);
    record_file::int32_list_record(file, sides);
    record_file::int32_list_record(file, walls);
}

void write_coordinates(Problem& problem, const Domain& domain) {
    RecordFile file = create(problem, std::string("coordinates_") + tag_name(domain));
    record_file::int32_record(file, problem_domains::node_count(problem.mesh, domain));
    if (domain.tag == Tag::pm) {
        write_pm_coordinates(problem, file);
    } else {
        write_links(problem, domain, file);
    }
    if (domain.tag == Tag::olf) {
        record_file::logical_record(file, problem.walls);
        if (problem.walls) write_wall_nodes(domain, file);
    }
    close(problem, file);
}

// The lists of pm and dual, which name every element of the mesh.
void write_mesh_elements(const Problem& problem, const Domain& domain, RecordFile& file) {
    const problem_mesh::Mesh& mesh = problem.mesh;
    const std::int32_t elements = problem_mesh::element_count(mesh);
    record_file::int32_record(file, elements);
    record_file::begin_record(file, std::uint64_t{4} * static_cast<std::uint64_t>(elements) *
                                        static_cast<std::uint64_t>(domain.nodes_per_element));
    std::array<std::int32_t, 8> nodes{};
    for (std::int32_t element = 0; element < elements; ++element) {
        const std::int32_t used = problem_mesh::element_nodes(mesh, element, nodes.data());
        for (std::int32_t k = 0; k < used; ++k)
            record_file::put_int32(file, nodes[static_cast<std::size_t>(k)]);
    }
    record_file::begin_record(file, std::uint64_t{4} * static_cast<std::uint64_t>(elements));
    for (std::int32_t element = 0; element < elements; ++element)
        record_file::put_int32(file, problem_domains::file_zone(mesh, domain.tag, element));
}

void write_wall_elements(const Problem& problem, const Domain& olf, RecordFile& file) {
    const problem_mesh::Mesh& mesh = problem.mesh;
    std::vector<std::int32_t> beside;
    std::vector<std::int32_t> side;
    const std::int32_t cells_per_quad = mesh.prisms ? 2 : 1;
    const problem_mesh::WallLine wall = problem_mesh::wall_line(mesh);
    for (std::int32_t cell = 0; cell < static_cast<std::int32_t>(mesh.cells.size()); ++cell) {
        const std::int32_t i = cell / cells_per_quad % mesh.nx;
        const bool touches = olf.centres[static_cast<std::size_t>(cell)].column.wall;
        beside.push_back(problem.walls && touches ? 1 : 0);
        side.push_back(i < wall.i ? 1 : 2);
    }
    record_file::int32_list_record(file, beside);
    record_file::logical_record(file, problem.walls);
    if (problem.walls) record_file::int32_list_record(file, side);
}

void write_fractures(const Problem& problem, const Domain& frac, RecordFile& file) {
    record_file::int32_list_record(file, frac.side_elements);
    record_file::begin_record(file, std::uint64_t{8} * frac.aperture.size());
    for (const double aperture : frac.aperture)
        record_file::put_real64(file, units(problem).per_metre * aperture);
}

void write_elements(Problem& problem, const Domain& domain) {
    RecordFile file = create(problem, std::string("elements_") + tag_name(domain));
    record_file::int32_record(file, domain.nodes_per_element);
    if (domain.tag == Tag::pm || domain.tag == Tag::dual) {
        write_mesh_elements(problem, domain, file);
    } else {
        record_file::int32_record(file, problem_domains::element_count(problem.mesh, domain));
        record_file::int32_list_record(file, domain.element_nodes);
        record_file::int32_list_record(file, domain.element_zone);
    }
    if (domain.tag == Tag::olf) write_wall_elements(problem, domain, file);
    if (domain.tag == Tag::frac) write_fractures(problem, domain, file);
    close(problem, file);
}

std::string zero_padded(std::int64_t number, std::size_t digits) {
    const std::string text = std::to_string(number);
    return text.size() < digits ? std::string(digits - text.size(), '0') + text : text;
}

std::string time_stamp(double time) {
    std::array<char, 64> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), time, std::chars_format::fixed).ptr;
    std::string stamp(text.data(), end);
    return stamp.find('.') == std::string::npos ? stamp + ".0" : stamp;
}

const char* type_code(Type type) {
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

void write_header(const Problem& problem, const Variable& variable, const Weather& weather,
                  std::int32_t count, RecordFile& file) {
    std::string text = time_stamp(weather.time / units(problem).seconds) + " " + variable.meaning;
    text.resize(55, ' ');
    if (!problem.older_generation)
        text += "#!TVN001LE" + std::string(type_code(variable.type)) +
                zero_padded(variable.components, 2) + zero_padded(count, 10);
    record_file::text_record(file, text, 80);
}

// From SI units to those of the problem. Degrees stand in place of a concentration of heat, and
// watts in place of its flux, which are free of lengths.
double unit_scale(const Problem& problem, const Variable& variable, const Species* species) {
    double length_power = variable.length_power;
    double time_power = variable.time_power;
    if (species != nullptr && species->heat) {
        length_power = 0;
        time_power *= 3;
    }
    return std::pow(units(problem).per_metre, length_power) *
           std::pow(units(problem).seconds, -time_power);
}

// The species or origins that the variable has a file for each of; one without a name where it has
// only one file.
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
    if (variable.family == Family::one_file || variable.family == Family::origin_sums) return {{}};
    std::vector<Species> chosen;
    const auto& list = variable.family == Family::origins ? *problem.origins : problem.species;
    std::copy_if(list.begin(), list.end(), std::back_inserter(chosen), belongs);
    return chosen;
}

// Without the time index.
std::string result_path(const Problem& problem, const Variable& variable, const Domain& domain,
                        const Species& species) {
    const bool of_origins =
        variable.family == Family::origins || variable.family == Family::origin_sums;
    std::string path =
        problem.directory + (of_origins ? "/hmc/" : "/") + problem.prefix + "o." + variable.stem;
    if (path.back() == '.') return path;
    path += tag_name(domain);
    if (!species.name.empty()) path += (of_origins ? ".f_" : ".") + species.name;
    return path + variable.tail + ".";
}

void put_value(RecordFile& file, Type type, double value) {
    switch (type) {
    case Type::real64:
        return record_file::put_real64(file, value);
    case Type::real32:
        return record_file::put_real32(file, static_cast<float>(value));
    case Type::int32:
        return record_file::put_int32(file, static_cast<std::int32_t>(value));
    }
}

void write_values(const Problem& problem, const Variable& variable, const Domain& domain,
                  const Species* species, const Weather& weather, std::int32_t count,
                  RecordFile& file) {
    const double scale = unit_scale(problem, variable, species);
    const bool nodal = variable.location == Location::node;
    const auto put = [&](std::int32_t position, int component) {
        problem_domains::Place place =
            nodal ? problem_domains::node_place(problem.mesh, domain, position)
                  : problem_domains::element_place(problem.mesh, domain, position);
        place.species = species;
        put_value(file, variable.type, scale * variable.field(place, weather, component));
    };
    const std::uint64_t size = variable.type == Type::real64 ? 8 : 4;
    if (problem.older_generation && variable.components > 1) {
        for (std::int32_t position = 0; position < count; ++position) {
            record_file::begin_record(file, size * static_cast<std::uint64_t>(variable.components));
            for (int component = 0; component < variable.components; ++component)
                put(position, component);
        }
        return;
    }
    for (int component = 0; component < variable.components; ++component) {
        record_file::begin_record(file, size * static_cast<std::uint64_t>(count));
        for (std::int32_t position = 0; position < count; ++position) put(position, component);
    }
}

} // namespace

double per_metre(const Problem& problem) {
    return units(problem).per_metre;
}

void write_text(Problem& problem, const std::string& name, const std::string& text) {
    RecordFile file = record_file::create(problem.directory + "/" + name, problem.piece_limit);
    record_file::plain_text(file, text);
    close(problem, file);
}

void write_description(Problem& problem) {
    write_text(problem, "batch.pfx", problem.prefix + "\n");
    write_text(problem, problem.prefix + ".skiv",
               "Hill slope catchment with a stream: rain, infiltration and recession\n");
    RecordFile file = create(problem, "gen");
    record_file::text_record(file, "2918", 80);
    record_file::int32_record(file, 2);
    record_file::begin_record(file, 120);
    record_file::put_text(file, "Hill slope catchment with a stream", 60);
    record_file::put_text(file, "Storms, infiltration and recession, hour by hour", 60);
    record_file::int32_record(file, problem.unit_system);
    close(problem, file);
    if (!problem.species.empty()) write_species(problem);
    if (problem.origins) write_origins(problem);
}

void write_mesh(Problem& problem) {
    for (const Domain& domain : problem.domains) {
        write_coordinates(problem, domain);
        write_elements(problem, domain);
    }
}

void write_results(Problem& problem, const Variable& variable, const Weather& weather,
                   std::int32_t index) {
    using problem_variables::When;
    if (variable.when == When::first && index > 1) return;
    if (variable.when == When::later && index == 1) return;
    const std::string suffix = zero_padded(index, static_cast<std::size_t>(problem.suffix_digits));
    const std::vector<Species> of = members(problem, variable);
    for (const Domain& domain : problem.domains) {
        if ((variable.domains & problem_domains::bit(domain.tag)) == 0) continue;
        if (domain.shares_nodes && problem_variables::is_at_nodes_of_pm(variable)) continue;
        const std::int32_t count = variable.location == Location::node
                                       ? problem_domains::node_count(problem.mesh, domain)
                                       : problem_domains::element_count(problem.mesh, domain);
        for (const Species& species : of) {
            RecordFile file = record_file::create(
                result_path(problem, variable, domain, species) + suffix, problem.piece_limit);
            write_header(problem, variable, weather, count, file);
            write_values(problem, variable, domain, &species, weather, count, file);
            close(problem, file);
        }
    }
}

} // namespace problem_files
