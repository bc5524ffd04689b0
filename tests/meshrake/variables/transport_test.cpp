#include "tests/support/data_set.hpp"
#include "tests/support/runs.hpp"

// Variables with a file for each species or mixing fraction: which files give which columns.
namespace {

using namespace sample_files;
using runs::runHere;
using testing::HasSubstr;
using Texts = std::vector<std::string>;

struct Member {
    std::string file, name, label, unit;
};
using Family = std::vector<Member>;

const Texts species = {"Heat", "Virus", "Ca salt"}; // the last one is immobile

// The members are the first species, as many as units are given for.
Family familyOf(const std::string& stem, const std::string& tail, const std::string& label,
                const Texts& units) {
    Family family;
    for (std::size_t s = 0; s < units.size(); ++s) {
        const std::string name = species[s] + tail;
        family.push_back(
            {"to." + stem + "_pm." + species[s], name, label.empty() ? name : label, units[s]});
    }
    return family;
}

const Texts amounts = {"(deg C)", "(Nc m^-3)", "(kg m^-3)"};
const Texts fluxes = {"(kg s^-3)", "(Nc m^-2 s^-1)"};
const std::vector<Family> families = {
    familyOf("conc", "", "", amounts),
    familyOf("concsolid", " (solid)", "", {"(Nc kg^-1)", "(Nc kg^-1)"}),
    familyOf("iconc", " (immobile)", "", amounts),
    familyOf("ExchSol", " exchange", "solute exchange", fluxes),
    familyOf("ExchSolAdv", " adv. exchange", "adv. solute exchange", fluxes),
    familyOf("DualExchSolAdv", " dual adv. exchange", "dual adv. solute exchange", fluxes),
    familyOf("ExchSolDisp", " disp. exchange", "disp. solute exchange", fluxes),
    familyOf("DualExchSolDisp", " dual disp. exchange", "dual disp. solute exchange", fluxes),
    familyOf("mass_sorbed", " Mass Sorbed", "mass sorbed", {"(kg)"}),
    {{"./hmc/to.hmc_pm.f_rain", "f_rain", "f_rain", "(-)"},
     {"./hmc/to.hmc_pm.mixing_ratio", "HMC Mixing Ratio", "hmc_mixing_ratio", "(-)"},
     {"./hmc/to.hmc_pm.hmc_error", "HMC Error", "hmc_error", "(-)"}}};

// One brick at three times, of which only the mesh is written: 7 columns.
const std::string mesh = "X,Y,Z,Zone,Layer Number,Column Number,Thickness";
const std::string meshNumbers = "1,2,3,4,5,6,7";
Problem baseProblem() {
    Problem problem = brickProblem({1, 1, 1, 3});
    // The first species is heat and made of particles at once: heat comes first.
    problem["to.species"] = integerRecords({2, 1}) + textRecord(species[0], 50) +
                            textRecord(species[1], 50) + textRecord(species[2], 50) +
                            integerRecords({-1, 0, 1, -1});
    problem["to.hmc"] =
        integerRecords({1, 2, 3, -1, 1, 4, 5}) + textRecord("rain", 80) + integerRecords({6, 7});
    problem["t.plot.control"] = "end\nwrite pm domain file\nno pm heads\n";
    return problem;
}

void add(Problem& problem, const Family& family, std::size_t member, int time) {
    const double value = 100 * time + static_cast<double>(member) + 0.5;
    const std::string& file = family[member].file;
    const bool single = file.find("ExchSol") != std::string::npos;
    problem[file + ".000" + std::to_string(time)] =
        single ? resultFile("0.0", {std::vector<float>(8, static_cast<float>(value))})
               : resultFile("0.0", {Reals(8, value)});
}

struct Output {
    runs::Ran ran;
    std::string text;
    data_set::DataSet set = data_set::parse(text);
};

Output runOver(const Problem& problem) {
    const Folder folder;
    std::filesystem::create_directory("hmc");
    write(problem);
    const runs::Ran ran = runHere();
    return {ran, get("to.pm.dat")};
}

// The arrays of a zone in their order: comment and value without its part behind the point.
std::string arraysOf(const data_set::Zone& zone) {
    std::string arrays;
    std::istringstream labels(zone.written);
    std::map<std::string, std::size_t> taken; // of arrays with the same comment
    for (std::string label; std::getline(labels, label, ',');) {
        const std::string value = zone.values.at(label).at(8 * taken[label]++);
        arrays += "," + label + " " + value.substr(0, value.find('.'));
    }
    return arrays;
}

// At the second time any of the files may be missing: that shares the column, and all columns are
// written if the last file is there, with the values read last. The third time is whole again. At
// the first time the first file decides for all; when it is there, the others must be too.
void expectToComeAndGo(const Family& family, unsigned present) {
    Problem gaps = baseProblem(), late = baseProblem();
    std::string names = mesh, second, third, shared = meshNumbers, missing;
    bool last = false;
    for (std::size_t m = 0; m < family.size(); ++m) {
        const Member& member = family[m];
        last = (present >> m & 1) != 0;
        for (const int time : {1, 2, 3}) {
            if (last || time != 2) add(gaps, family, m, time);
            if (last || time != 1) add(late, family, m, time);
        }
        names += "," + member.name;
        second += "," + member.label + (last ? " 20" : " 10") + std::to_string(m);
        third += "," + member.label + " 30" + std::to_string(m);
        if (!last) shared += "," + std::to_string(8 + m);
        if (!last && missing.empty()) missing = member.file + ".0001";
    }
    const Output out = runOver(gaps);
    ASSERT_EQ(out.set.zones.size(), 3U);
    EXPECT_EQ(out.set.variables, names);
    EXPECT_EQ(out.set.zones[1].shared, shared);
    EXPECT_EQ(arraysOf(out.set.zones[1]), last ? second : "");
    EXPECT_EQ(out.set.zones[2].shared, meshNumbers);
    EXPECT_EQ(arraysOf(out.set.zones[2]), third);
    for (const Member& member : family)
        EXPECT_THAT(out.text, HasSubstr("\n# " + member.name + " units: " + member.unit + "\n"));

    const Output first = runOver(late);
    if ((present & 1) != 0 && !missing.empty())
        return runs::expectFailure(first.ran, {"Failed to open file: " + missing + "\n"});
    EXPECT_EQ(first.ran.status, 0);
    EXPECT_EQ(first.set.variables, missing.empty() ? names : mesh);
}

TEST(Families, ComeAndGo) {
    for (const Family& family : families)
        for (unsigned present = 0; present < 1U << family.size(); ++present) {
            SCOPED_TRACE(family[0].file + " " + std::to_string(present));
            expectToComeAndGo(family, present);
        }
}

// A continued run that begins without files warns of each, before the number of its column; of the
// first one also when it decides for the family.
TEST(Families, FallBackToTheFirstIndex) {
    const Folder folder;
    Problem problem = baseProblem();
    for (std::size_t member = 0; member < families[0].size(); ++member)
        add(problem, families[0], member, 1);
    problem["t.plot.control"] =
        "tecplot binary mode\ntecplot binary append\n" + problem["t.plot.control"];
    problem["to.tec_append"] = integerRecord({2});
    write(problem);
    const std::string warning = "Warning: file not found -> appending at time index 0001\n";
    EXPECT_THAT(runHere().screen,
                HasSubstr("Thickness\n" + warning + warning + "   8     Heat\n" + warning +
                          "   9     Virus\n" + warning + "  10     Ca salt\n"));
}

// One column, filled by the files of all mobile species in turn.
TEST(Redox, LastFileHasTheLastWord) {
    struct Case {
        std::string first, second; // per species, whether its file is there
        std::string column, shared, arrays;
    };
    const std::string name = ",Redox capacity";
    const Case cases[] = {{"10", "11", name, "", ",Redox Capacity 201"},
                          {"11", "10", name, ",8", ""},
                          {"11", "01", name, ",8", ",Redox Capacity 201"},
                          {"01", "11", "", "", ""}};
    const Family redox = {{"to.conc_pm.Heat-Redox", "", "", ""},
                          {"to.conc_pm.Virus-Redox", "", "", ""}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.first + " " + c.second);
        Problem problem = baseProblem();
        for (std::size_t m = 0; m < 2; ++m) {
            if (c.first[m] == '1') add(problem, redox, m, 1);
            if (c.second[m] == '1') add(problem, redox, m, 2);
        }
        const data_set::DataSet set = runOver(problem).set;
        EXPECT_EQ(set.variables, mesh + c.column);
        EXPECT_EQ(set.zones.at(1).shared, meshNumbers + c.shared);
        EXPECT_EQ(arraysOf(set.zones[1]), c.arrays);
    }
}

// Every family at once, in its order and only in its domains.
TEST(Families, StandInTheirDomains) {
    const Folder folder;
    makeProblem("--nx 3 --ny 2 --layers 2 --times 1 --domains dual,olf --hmc 2 "
                "--species Heat:heat,Virus:particles,Ca:immobile --variables conc,concsolid,iconc,"
                "ExchSol,ExchSolAdv,DualExchSolAdv,ExchSolDisp,DualExchSolDisp,conc-Redox,"
                "mass_sorbed,hmc");
    ASSERT_EQ(runHere().status, 0);
    std::string summaries;
    for (const std::string tag : {"pm", "dual", "olf"})
        summaries += tag + "\n" + data_set::summaryOf(get("to." + tag + ".dat"));
    expectFile("family_columns.txt", summaries);
}

} // namespace
