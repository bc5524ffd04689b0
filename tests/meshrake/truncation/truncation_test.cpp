#include "meshrake/truncation/common_truncation.hpp"
#include "meshrake/truncation/multi_truncation.hpp"

#include "meshrake/model/run_state.hpp"
#include "tests/support/runs.hpp"

#include <sstream>

namespace {

using model::Domain;
using sample_files::Integers;

// 2 by 1 columns of 2 bricks, with 6 nodes in each sheet, at elevations 0, 1 and 3. The centroids
// have x = 0.5 or 1.5, y = 0.5, and z = 0.5 or 2 in pm and z = 3 in the surface.
class Truncation : public runs::PartOfRun {
protected:
    explicit Truncation(bool commonNodes = false) {
        sample_files::Problem problem = sample_files::brickProblem({2, 1, 2});
        if (commonNodes) sample_files::patch(problem["to.coordinates_olf"], 1, 0, 0);
        sample_files::write(problem);
        create(pm, "pm", pm);
        create(olf, "olf", pm);
        takeScreen();
    }

    void truncate(const std::string& what, Domain& domain) {
        if (domain.couplingScheme == 1)
            truncation::multiTruncate(domain, pm);
        else
            truncation::commonTruncate(domain, pm);
        add(what, domain);
    }

    // Adds the included nodes and elements, from 1, and the output numbers by pm node.
    void add(const std::string& what, const Domain& domain) {
        report << what << takeScreen() << "kept " << domain.nnTruncated << " " << domain.neTruncated
               << (domain.outputIsPacked ? ", packed" : "");
        const auto list = [&](const char* name, const Integers& numbers) {
            report << "\n" << name << ":";
            for (const std::int32_t number : numbers) report << " " << number;
        };
        const auto listIncluded = [&](const char* name, const std::vector<std::uint8_t>& mask) {
            Integers numbers;
            for (std::size_t i = 0; i < mask.size(); ++i)
                if (mask[i]) numbers.push_back(static_cast<std::int32_t>(i + 1));
            list(name, numbers);
        };
        listIncluded("nodes of pm", domain.nodeIncluded);
        listIncluded("nodes of the domain", domain.domainNodeIncluded);
        listIncluded("elements", domain.elementIncluded);
        list("numbers", domain.nodeRenumber);
        report << "\n\n";
    }

    Domain pm, olf;
    std::ostringstream report;
};

constexpr double all = 1e20;

TEST_F(Truncation, IncludesElementsByTheirCentroids) {
    struct Case {
        const char* what;
        std::array<double, 6> bounds;
        std::array<std::int32_t, 2> layers;
        bool byBounds, byLayer;
    };
    const std::array<double, 6> open{-all, all, -all, all, -all, all};
    const Case cases[] = {
        {"whole", open, {0, 1000}, false, false},
        {"a point", {0.5, 0.5, 0.5, 0.5, 0.5, 0.5}, {0, 0}, true, false},
        {"upper layer", {0.5, 1.5, -all, all, 2, 3}, {0, 0}, true, false},
        {"right column", {0.6, all, -all, all, -all, all}, {0, 0}, true, false},
        {"layer 2", open, {2, 1000}, false, true}, // each layer of the surface has one element
        {"layer 1", open, {0, 1}, false, true},
        {"layers, which ignore the z range", {-all, 1, -all, all, 100, 100}, {1, 2}, false, true},
        {"both, which ignores the layers", {-all, all, -all, all, 2, all}, {1, 1}, true, true},
        {"no element", {1, 0, 1, 0, 1, 0}, {0, 1000}, true, false}};
    for (const Case& c : cases)
        for (Domain* domain : {&pm, &olf}) {
            domain->truncateBounds = c.bounds;
            domain->truncateLayers = c.layers;
            domain->truncateEnabled = c.byBounds;
            domain->truncateByLayerEnabled = c.byLayer;
            truncate(c.what, *domain);
        }
    sample_files::expectFile("truncation.txt", report.str());
}

TEST_F(Truncation, OddMeshes) {
    olf.elementNodes = {13, 14, 17, 0, 14, 15, 18, 17};
    olf.linkFromPm[17] = 0;
    truncate("a triangle, and an element with a node that is not in the domain", olf);
    pm.elementNodes[0] = 0;
    truncate("a node that is in no element", pm);
    model::run.wallsPresent = true;
    truncate("with walls all nodes are written, but not numbered", pm);
    pm.truncateByLayerEnabled = true;
    pm.truncateLayers = {1, 1};
    for (const std::int32_t sheets : {0, 1}) {
        model::run.sheetCount = sheets;
        truncate("layers of a flat mesh", pm);
    }
    olf.elementNodes = {13, 14, 17, 0, 0, 0, 0, 0};
    olf.truncateEnabled = true;
    olf.truncateBounds = {2.0 / 3, 2.0 / 3, 1.0 / 3, 1.0 / 3, 3, 3};
    truncate("the centroid of a triangle, and an element without nodes", olf);
    olf.truncateBounds = {-all, all, -all, all, -all, all};
    truncate("the whole mesh", olf);
    sample_files::expectFile("truncation_of_odd_meshes.txt", report.str());
}

// A surface on the common-node scheme.
class CommonTruncation : public Truncation {
protected:
    CommonTruncation() : Truncation(true) {}
};

TEST_F(CommonTruncation, IncludesTheWholeMeshOrAPart) {
    const Integers elementNodes = olf.elementNodes;
    std::swap(olf.linkToPm[0], olf.linkToPm[5]);
    olf.elementNodes = {13, 14, 17, 16, 14, 17, 16, -3};
    truncate("whole: numbered in the order of the domain's nodes, also one that is in no element",
             olf);
    EXPECT_EQ(model::run.meshNodesPerElement, 3);
    std::swap(olf.linkToPm[0], olf.linkToPm[5]);
    olf.elementNodes = elementNodes;
    olf.linkFromPm[13] = 0;
    olf.truncateByLayerEnabled = true;
    olf.truncateLayers = {1, 1};
    olf.truncateBounds = {0, 0.5, -all, all, 100, 100};
    truncate("a part, with a node without a link; layers are as large as those of pm", olf);
    olf.truncateEnabled = true; // takes precedence over the layers
    olf.truncateBounds = {0, 2, 0, 1, 3, 3};
    olf.linkFromPm[17] = 99;
    report << runs::endingOf([&] { truncation::commonTruncate(olf, pm); });
    sample_files::expectFile("common_truncation.txt", report.str());
}

} // namespace
