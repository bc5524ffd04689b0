#include "meshrake/truncation/multi_truncation.hpp"

#include "meshrake/model/run_state.hpp"
#include "tests/support/runs.hpp"

#include <set>

namespace {

using model::Domain;
using sample_files::Integers;
using testing::ElementsAre;

// 2 by 1 columns of 2 bricks, 6 nodes a sheet, at the heights 0, 1 and 3. Centroids have x at 0.5
// and 1.5, y at 0.5, z at 0.5 and 2; the surface has them at 3.
class MultiTruncation : public runs::PartOfRun {
protected:
    MultiTruncation() {
        sample_files::write(sample_files::brickProblem({2, 1, 2}));
        create(pm, "pm", pm);
        create(olf, "olf", pm);
    }

    Domain pm, olf;
};

TEST_F(MultiTruncation, KeepsElementsByTheirCentroids) {
    constexpr double all = 1e20;
    const std::array<double, 6> open{-all, all, -all, all, -all, all};
    struct Case {
        std::array<double, 6> bounds;
        std::array<std::int32_t, 2> layers;
        bool byBounds, byLayer;
        Integers pmElements, olfElements;
    };
    const Case cases[] = {
        {open, {0, 1000}, false, false, {1, 2, 3, 4}, {1, 2}},
        {{0.5, 0.5, 0.5, 0.5, 0.5, 0.5}, {0, 0}, true, false, {1}, {}},
        {{0.5, 1.5, -all, all, 2, 3}, {0, 0}, true, false, {3, 4}, {1, 2}},
        {{0.6, all, -all, all, -all, all}, {0, 0}, true, false, {2, 4}, {2}},
        {open, {2, 1000}, false, true, {3, 4}, {2}}, // one element makes a layer of the surface
        {open, {0, 1}, false, true, {1, 2}, {1}},
        {{-all, 1, -all, all, 100, 100}, {1, 2}, false, true, {1, 3}, {1}},   // z plays no part
        {{-all, all, -all, all, 2, all}, {1, 1}, true, true, {3, 4}, {1, 2}}, // layers do not
        {{1, 0, 1, 0, 1, 0}, {0, 1000}, true, false, {}, {}}};
    for (const Case& c : cases) {
        for (Domain* domain : {&pm, &olf}) {
            domain->truncateBounds = c.bounds;
            domain->truncateLayers = c.layers;
            domain->truncateEnabled = c.byBounds;
            domain->truncateByLayerEnabled = c.byLayer;
            truncation::multiTruncate(*domain, pm);
            SCOPED_TRACE(domain->name + " case " + std::to_string(&c - cases));
            const Integers& elements = domain == &pm ? c.pmElements : c.olfElements;
            EXPECT_EQ(runs::numbersOf(domain->elementIncluded), elements);
            EXPECT_EQ(domain->neTruncated, static_cast<std::int32_t>(elements.size()));
            EXPECT_EQ(domain->outputIsPacked, c.byBounds || c.byLayer);

            // The nodes of the kept elements, numbered in their order under the pm node.
            std::set<std::int32_t> pmNodes;
            for (const std::int32_t e : elements)
                for (std::int32_t k = 0; k < domain->nodesPerElement; ++k)
                    pmNodes.insert(domain->elementNodes[static_cast<std::size_t>(
                        (e - 1) * domain->nodesPerElement + k)]);
            EXPECT_EQ(domain->nnTruncated, static_cast<std::int32_t>(pmNodes.size()));
            Integers renumber(18);
            std::int32_t number = 0;
            for (const std::int32_t node : pmNodes)
                renumber[static_cast<std::size_t>(node - 1)] = ++number;
            EXPECT_EQ(domain->nodeRenumber, renumber);
        }
    }
}

TEST_F(MultiTruncation, FullMeshOfUnusedSlotsAndMissingNodes) {
    // A triangle; an element of which one node is not in the domain.
    olf.elementNodes = {13, 14, 17, 0, 14, 15, 18, 17};
    olf.linkFromPm[17] = 0;
    truncation::multiTruncate(olf, pm);
    EXPECT_THAT(runs::numbersOf(olf.elementIncluded), ElementsAre(1));
    EXPECT_THAT(runs::numbersOf(olf.nodeIncluded),
                ElementsAre(1, 2, 3, 5)); // also those of the lost element
    EXPECT_EQ(olf.nnTruncated, 4);

    // All elements of pm stay, but a node that none of them has does not.
    pm.elementNodes[0] = 0;
    truncation::multiTruncate(pm, pm);
    EXPECT_EQ(std::pair(pm.nnTruncated, pm.neTruncated), std::pair(17, 4));
    EXPECT_EQ(pm.nodeRenumber[0], 0);
    EXPECT_EQ(pm.nodeRenumber[17], 17);

    // Behind walls all nodes count, though they get no more numbers.
    model::run.wallsPresent = true;
    truncation::multiTruncate(pm, pm);
    EXPECT_EQ(pm.nnTruncated, 18);
    EXPECT_EQ(pm.nodeRenumber[17], 17);
}

TEST_F(MultiTruncation, LayersOfAFlatMesh) {
    pm.truncateByLayerEnabled = true;
    pm.truncateLayers = {1, 1};
    for (const std::int32_t sheets : {0, 1}) {
        model::run.sheetCount = sheets;
        truncation::multiTruncate(pm, pm);
        EXPECT_EQ(pm.neTruncated, 4) << sheets;
    }
}

TEST_F(MultiTruncation, CentroidsOfPartlyUsedElements) {
    // The mean of the three corners of the triangle; no mean at all of an element without nodes.
    olf.elementNodes = {13, 14, 17, 0, 0, 0, 0, 0};
    olf.truncateEnabled = true;
    olf.truncateBounds = {2.0 / 3, 2.0 / 3, 1.0 / 3, 1.0 / 3, 3, 3};
    truncation::multiTruncate(olf, pm);
    EXPECT_THAT(runs::numbersOf(olf.elementIncluded), ElementsAre(1));
    olf.truncateBounds = {-1e20, 1e20, -1e20, 1e20, -1e20, 1e20};
    truncation::multiTruncate(olf, pm);
    EXPECT_THAT(runs::numbersOf(olf.elementIncluded), ElementsAre(1));
}

} // namespace
