#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "examples/problem_mesh.hpp"
#include "examples/problem_species.hpp"

// The simulation domains of the sample problem. A node of a domain is at a node of pm. In
// multi-node coupling the two are different nodes that are linked; in common-node coupling the
// domain shares the node of pm and numbers it all the same, in the order of pm.
//
// The global numbering has the nodes of pm first, then those of the domains with nodes of their
// own, in the order of `Tag`: node i of a domain has the global number nodeOffset + i. A domain
// that shares nodes takes numbers from there too, but the next domain begins at the same one.
// Element lists hold node numbers of pm.
namespace problem_domains {

enum class Tag { pm, dual, olf, frac, chan, well, tile };
constexpr std::array<const char*, 7> names = {"pm", "dual", "olf", "frac", "chan", "well", "tile"};

// Sets of domains, for the table of variables and the options.
using TagSet = unsigned;
constexpr TagSet bit(Tag tag) {
    return 1U << static_cast<unsigned>(tag);
}

// The middle of an element of a domain that is not 3D.
struct Centre {
    problem_mesh::Column column;
    double z = 0;
    double volume = 0; // of water or rock that the element represents, cubic metres
};

struct Domain {
    Tag tag = Tag::pm;
    bool sharesNodes = false;         // common-node coupling
    std::int32_t nodeOffset = 0;      // global nodes ahead of this domain
    std::vector<std::int32_t> pmNode; // per node, its node of pm; empty for pm

    // The elements of pm and dual are those of the mesh and are not listed here.
    std::int32_t nodesPerElement = 0;
    std::vector<std::int32_t> elementNodes; // node numbers of pm, 0 in an unused slot
    std::vector<std::int32_t> elementZone;
    std::vector<Centre> centres; // per element

    std::vector<std::int32_t> pmElement; // dual: the pm elements where it is present

    std::vector<std::int32_t> sideElements; // frac: elements of pm on the one side of each
                                            // element, then those on the other; 0 for none
    std::vector<double> aperture;           // frac: per element, metres

    // olf: nodes that a cutoff wall doubles, as node numbers of olf. Their doubles are the last
    // nodes of the domain, in the same order.
    std::vector<std::int32_t> doubledNodes;
};

// Where a value is wanted, and of what; and what is known there.
struct Place {
    const problem_mesh::Column* column = nullptr;
    double z = 0; // metres
    int groundZone = 0;
    int zone = 0;      // of an element of the domain
    double volume = 0; // of an element, cubic metres
    double cellLength = 0;
    bool beyondWall = false; // a doubled node, on the far side of the wall
    const problem_species::Species* species = nullptr; // of a value that belongs to one
};

// Builds the domains of the set, pm always among them, in the order of the global numbering. Those
// of `sharing` share the nodes of pm. With `walls`, the surface nodes along a cutoff wall are
// doubled, which needs nodes of its own.
std::vector<Domain> build(const problem_mesh::Mesh& mesh, TagSet wanted, TagSet sharing,
                          bool walls);

std::int32_t nodeCount(const problem_mesh::Mesh& mesh, const Domain& domain);

// Elements that have results. The list of dual in its file is longer: it names all elements of pm,
// those without a dual continuum with zone 0.
std::int32_t elementCount(const problem_mesh::Mesh& mesh, const Domain& domain);

// Zone of each element of pm or dual as the elements file lists it, by element number of pm.
int fileZone(const problem_mesh::Mesh& mesh, Tag tag, std::int32_t pmElement);

// Nodes and elements are counted from 0 here.
Place nodePlace(const problem_mesh::Mesh& mesh, const Domain& domain, std::int32_t node);
Place elementPlace(const problem_mesh::Mesh& mesh, const Domain& domain, std::int32_t element);

} // namespace problem_domains
