#include "examples/problem_species.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <set>
#include <sstream>
#include <system_error>

namespace problem_species {

namespace {

constexpr std::size_t maximumNameLength = 50;
constexpr int maximumSpecies = 1000;

void number(std::vector<Species>& list) {
    for (std::size_t k = 0; k < list.size(); ++k) {
        list[k].number = static_cast<int>(k);
        list[k].count = static_cast<int>(list.size());
    }
}

// Returns false for a word that is not a kind of species.
bool apply(Species& species, const std::string& word) {
    if (word == "heat") species.heat = true;
    if (word == "particles") species.particles = true;
    if (word == "immobile") species.mobile = false;
    return word == "heat" || word == "particles" || word == "immobile";
}

// Returns the number of species that a number requests, 0 for a name.
int countIn(const std::string& word) {
    int count = 0;
    const char* end = word.data() + word.size();
    const auto [stop, fault] = std::from_chars(word.data(), end, count);
    return fault == std::errc() && stop == end ? count : 0;
}

bool isName(const std::string& text) {
    return !text.empty() && text.size() <= maximumNameLength && text.front() != ' ' &&
           text.back() != ' ' && text.find_first_of("/\\\"") == std::string::npos &&
           text.find_first_not_of("-0123456789") != std::string::npos;
}

// Returns what is wrong with a complete list.
std::optional<std::string> faultOf(const std::vector<Species>& list) {
    if (list.empty()) return "no species";
    if (list.size() > maximumSpecies)
        return "more than " + std::to_string(maximumSpecies) + " species";
    std::set<std::string> names;
    for (const Species& species : list) {
        if (!isName(species.name)) return "\"" + species.name + "\" cannot be a name";
        if (!names.insert(species.name).second) return "two species \"" + species.name + "\"";
        if (!species.mobile && (species.heat || species.particles))
            return "\"" + species.name + "\" is immobile and has no other kind";
    }
    return std::nullopt;
}

} // namespace

Reading read(const std::string& list) {
    Reading reading;
    int solutes = 0;
    std::istringstream items(list);
    for (std::string item; std::getline(items, item, ',');) {
        std::istringstream words(item);
        Species species;
        std::getline(words, species.name, ':');
        for (std::string word; std::getline(words, word, ':');)
            if (!apply(species, word)) return {{}, "no kind of species \"" + word + "\""};
        const int count = std::min(countIn(species.name), maximumSpecies + 1);
        for (int k = 0; k < count; ++k) {
            species.name = "Solute " + std::to_string(++solutes);
            reading.species.push_back(species);
        }
        if (count < 1) reading.species.push_back(species);
    }
    reading.fault = faultOf(reading.species);
    std::stable_partition(reading.species.begin(), reading.species.end(),
                          [](const Species& species) { return species.mobile; });
    number(reading.species);
    return reading;
}

std::vector<Species> origins(int count) {
    constexpr std::array<const char*, 6> names = {"rain",     "snowmelt", "hill side",
                                                  "alluvium", "bedrock",  "upstream"};
    std::vector<Species> list(static_cast<std::size_t>(count));
    number(list);
    for (Species& origin : list) {
        const auto k = static_cast<std::size_t>(origin.number);
        origin.name = k < names.size() ? names[k] : "spring " + std::to_string(k + 1);
    }
    return list;
}

} // namespace problem_species
