#pragma once

#include <stdint.h>

/* Writes finite-element data sets for Tecplot. A data set NAME is the file NAME.szplt, in the
   classic binary layout. While it is unfinished, the file NAME.szplt.szhdr (the sidecar) lists all
   complete zones; a later writer resumes the data set from it.

   Texts end with a NUL byte. All functions return 0 for success, else a status of the I/O layer or
     1  arguments that contradict earlier calls, or a call out of order
     2  NAME.szplt on disk is damaged or was not written by this library
     3  NAME.szplt.szhdr on disk is damaged or was not written by this library
     4  the data set on disk has other variables
     5  zone 1 of the data set on disk has other numbers of nodes or elements, types or locations
        than the first new zone
     6  the data set on disk was not durable (own_functions.hpp)
   After a failure only the close may follow. */

#ifdef __cplusplus
extern "C" {
#endif

/* Opens the data set `fileName`, a name without extension. A data set with a sidecar is resumed: it
   keeps title, variables and zones. The first new zone replaces the first zone with the same time
   and all zones after it. Any other data set is replaced. `variableList` has the names with commas
   between them; an empty list means those of the resumed data set.
   `fileFormat` is 1, `fileType` 0 (grid and solution in one), `gridFileHandle` null. */
int32_t tecFileWriterOpen(const char* fileName, const char* dataSetTitle, const char* variableList,
                          int32_t fileFormat, int32_t fileType, int32_t defaultVarType,
                          void* gridFileHandle, void** fileHandle);

/* Writes the headers of all zones, so that readers find them. The current zone must be complete. */
int32_t tecFileWriterFlush(void* fileHandle, int32_t numZonesToRetain,
                           const int32_t* zonesToRetain);

/* Flushes, truncates the file to the end of its data, removes the sidecar and clears the handle.
   After a failure of this or an earlier call the data set stays unfinished, in the state of the
   last flush. */
int32_t tecFileWriterClose(void** fileHandle);

/* Add a name and a value to the data set, or to a variable (from 1), before the first new zone. In
   a resumed data set they replace all earlier ones. A blank value is left out. */
int32_t tecDataSetAddAuxData(void* fileHandle, const char* name, const char* value);
int32_t tecVarAddAuxData(void* fileHandle, int32_t var, const char* name, const char* value);

/* Begins the next zone and returns its number, from 1, in `zone`. Zone types: 1 lines, 2 triangles,
   3 quadrilaterals, 4 tetrahedra, 5 bricks, 0 none of these. The four lists have an entry for each
   variable: type of the values (1 float, 2 double, 3 int32_t), zone whose values it shares (0: it
   has its own), location (1 nodes, 0 elements), passive (always 0). `connectivityShareZone` is the
   zone whose node lists it shares (0: it has its own). `numFaceConnections` is 0. */
int32_t tecZoneCreateFE(void* fileHandle, const char* zoneTitle, int32_t zoneType, int64_t numNodes,
                        int64_t numElements, const int32_t* varTypes,
                        const int32_t* shareVarFromZone, const int32_t* valueLocations,
                        const int32_t* passiveVarList, int32_t connectivityShareZone,
                        int64_t numFaceConnections, int32_t faceNeighborMode, int32_t* zone);

/* Sets time and strand of the current zone, before its values. A zone without a time is static. */
int32_t tecZoneSetUnsteadyOptions(void* fileHandle, int32_t zone, double solutionTime,
                                  int32_t strand);

/* Writes the next node numbers of the current zone, element by element. `partition` is 0. */
int32_t tecZoneNodeMapWrite32(void* fileHandle, int32_t zone, int32_t partition,
                              int32_t nodesAreOneBased, int64_t count, const int32_t* nodes);

/* Write the next values of a variable (from 1) of the current zone, in the type of the variable.
   `partition` is 0. */
int32_t tecZoneVarWriteFloatValues(void* fileHandle, int32_t zone, int32_t var, int32_t partition,
                                   int64_t count, const float* values);
int32_t tecZoneVarWriteDoubleValues(void* fileHandle, int32_t zone, int32_t var, int32_t partition,
                                    int64_t count, const double* values);
int32_t tecZoneVarWriteInt32Values(void* fileHandle, int32_t zone, int32_t var, int32_t partition,
                                   int64_t count, const int32_t* values);

#ifdef __cplusplus
}
#endif
