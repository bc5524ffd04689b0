#pragma once

#include "tecio/tecio.h"
#include "tests/support/sample_files.hpp"

#include <cstdint>
#include <string>
#include <vector>

// Short forms of the calls of the writer library, for one data set "s" and its last zone.
namespace tecio_calls {

using Numbers = std::vector<std::int32_t>;
using Reals = std::vector<double>;

// By default a brick with two variables, the first of which is shared with zone 1.
struct ZoneShape {
    std::int64_t nodes = 8, elements = 1;
    Numbers types{2, 2}, shares{1, 0}, locations{1, 1};
    std::int32_t connectivity = 1, type = 5, passive = 0;
    std::int64_t faceConnections = 0;
};

extern void* set;
extern std::int32_t zone;
extern std::string title; // of each zone

// The functions with a result return the status.
int tryOpen(const char* variables, const char* setTitle = "t");
void open(const char* variables, const char* setTitle = "t"); // expects 0
int flush();
int create(const ZoneShape& shape);
int at(double time, std::int32_t strand = 1);
int reals(std::int32_t var, const Reals& values);
int narrow(std::int32_t var, const std::vector<float>& values);
int nodes(const Numbers& list);
int aux(const std::string& name, const std::string& value);

// Begins a zone of nodes without elements, which shares nothing.
void beginNodes(double time, std::int64_t count, const Numbers& types);

// Write a zone with one variable, whose values are the time of the zone.
int putZone(double time);
void addZone(double time);

// Expect zones with the times 1 to `lastTime` and their values. `finish` finishes the data set
// first.
void expectTimes(int lastTime);
void finish(int lastTime);

} // namespace tecio_calls
