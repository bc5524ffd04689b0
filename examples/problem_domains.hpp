#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "examples/problem_mesh.hpp"
#include "examples/problem_species.hpp"

// The simulation domains of the sample problem. Every node of a domain has the position of a node
// of pm. In multi-node coupling the two are separate nodes that are linked. In common-node coupling
// the domain shares the node of pm, and numbers its nodes in the order of pm.
//
// The global numbering has the nodes of pm first, then those of the domains with nodes of their
// own, in the order of `Tag`: node i of a domain has the global number nodeOffset + i. A domain
// that shares nodes uses such numbers too, but does not advance the offset of the next domain.
// Element lists contain node numbers of pm.
namespace problem_domains {

enum class Tag { pm, dual, olf, frac, chan, well, tile };
constexpr std::array<const char*, 7> names = {"pm", "dual", "olf", "frac", "chan", "well", "tile"};

// Sets of domains, for the table of variables and the options.
using TagSet = unsigned;
constexpr TagSet bit(Tag tag) {
    return 1U << static_cast<unsigned>(tag);
}

// The centre of an element of a domain that is not 3D.
struct Centre {
    problem_mesh::Column column;
    double z = 0;
    double volume = 0; // of water or rock that the element represents, cubic metres
};

struct Domain {
    Tag tag = Tag::pm;
    bool sharesNodes = false;         // common-node coupling
    std::int32_t nodeOffset = 0;      // number of global nodes before those of this domain
    std::vector<std::int32_t> pmNode; // per node, its node of pm; empty for pm

    // The elements of pm and dual are those of the mesh and are not listed here.
    std::int32_t nodesPerElement = 0;
    std::vector<std::int32_t> elementNodes; // node numbers of pm, 0 in an unused slot
    std::vector<std::int32_t> elementZone;
    std::vector<Centre> centres; // per element

    std::vector<std::int32_t> pmElement; // dual: the pm elements where it exists

    std::vector<std::int32_t> sideElements; // frac: elements of pm on the west side of each
                                            // element, then those on the east side
    std::vector<double> aperture;           // frac: per element, metres

    // olf: nodes that a cutoff wall doubles, as node numbers of olf. Their doubles are the last
    // nodes of the domain, in the same order.
    std::vector<std::int32_t> doubledNodes;
};

// The position and properties of a node or of the centre of an element.
struct Place {
    const problem_mesh::Column* column = nullptr;
    double z = 0; // metres
    int groundZone = 0;
    int zone = 0;            // of an element of the domain
    double volume = 0;       // of an element, cubic metres
    double cellLength = 0;   // mean side of a cell, metres
    bool beyondWall = false; // second of two doubled nodes, on the far side of the wall
    const problem_species::Species* species = nullptr; // for a value of a species or origin
};

// Builds pm and the included domains in the order of the global numbering. Those in `sharing` share
// the nodes of pm. With `walls`, the nodes of olf on the cutoff wall are doubled, so olf must not
// share its nodes.
std::vector<Domain> build(const problem_mesh::Mesh& mesh, TagSet included, TagSet sharing,
                          bool walls);

std::int32_t nodeCount(const problem_mesh::Mesh& mesh, const Domain& domain);

// Number of elements that have results. The elements file of dual lists all elements of pm. Those
// without a dual continuum have zone 0.
std::int32_t elementCount(const problem_mesh::Mesh& mesh, const Domain& domain);

// Zone of an element of pm or dual in its elements file.
int fileZone(const problem_mesh::Mesh& mesh, Tag tag, std::int32_t pmElement);

// Here nodes and elements are counted from 0, within the domain.
Place nodePlace(const problem_mesh::Mesh& mesh, const Domain& domain, std::int32_t node);
Place elementPlace(const problem_mesh::Mesh& mesh, const Domain& domain, std::int32_t element);

} // namespace problem_domains
