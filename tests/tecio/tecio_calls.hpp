#pragma once

#include "tecio/tecio.h"
#include "tests/support/sample_files.hpp"

#include <cstdint>
#include <string>
#include <vector>

// Short forms of the calls of the writer library, on one data set "s" and its last zone.
namespace tecio_calls {

using Numbers = std::vector<std::int32_t>;
using Reals = std::vector<double>;

// By default a brick, of whose two variables the first is that of zone 1.
struct ZoneShape {
    std::int64_t nodes = 8, elements = 1;
    Numbers types{2, 2}, shares{1, 0}, locations{1, 1};
    std::int32_t connectivity = 1, type = 5, passive = 0;
    std::int64_t faceConnections = 0;
};

extern void* set;
extern std::int32_t zone;
extern std::string title; // of each zone

// All but those without a result return the status.
int tryOpen(const char* variables, const char* setTitle = "t");
void open(const char* variables, const char* setTitle = "t"); // expects 0
int flush();
int create(const ZoneShape& shape);
int at(double time, std::int32_t strand = 1);
int reals(std::int32_t var, const Reals& values);
int narrow(std::int32_t var, const std::vector<float>& values);
int nodes(const Numbers& list);
int aux(const std::string& name, const std::string& value);

// Begins a zone of nodes alone, with variables of its own.
void beginNodes(double time, std::int64_t count, const Numbers& types);

// A zone whose one variable is its time.
int putZone(double time);
void addZone(double time);

// The values of each zone must be its time, from 1 to `lastTime`; `finish` ends the data set first.
void expectTimes(int lastTime);
void finish(int lastTime);

} // namespace tecio_calls
