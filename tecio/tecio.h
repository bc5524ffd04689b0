#pragma once

#include <stdint.h>

/* Writes finite-element data sets for Tecplot. A data set NAME is the file NAME.szplt, in the
   classic binary layout; while it is unfinished NAME.szplt.szhdr beside it lists all complete
   zones, with which a later writer resumes it.

   Texts end with a NUL byte. All functions return 0 when all is well, else a status of the I/O
   layer or one of these: 1 for arguments that do not fit what was said before, 2 for a NAME.szplt
   on disk that is damaged or none of ours, 3 for such a NAME.szplt.szhdr, 4 for a data set on disk
   with other variables, 5 for one whose zone 1 has another mesh, other types or other locations than
   the first new zone. After a failure only the close may follow. */

#ifdef __cplusplus
extern "C" {
#endif

/* Opens the data set `fileName`, a name without extension. One with a NAME.szplt.szhdr is
   resumed: it keeps title, variables and zones. The first new zone replaces the first one with the
   same time and all after that. Any other data set is replaced. `variableList` has the names with
   commas between them; an empty one means those of the resumed data set.
   `fileFormat` is 1, `fileType` 0 (grid and solution in one), `gridFileHandle` null. */
int32_t tecFileWriterOpen(const char* fileName, const char* dataSetTitle, const char* variableList,
                          int32_t fileFormat, int32_t fileType, int32_t defaultVarType,
                          void* gridFileHandle, void** fileHandle);

/* Writes the headers of all zones so far, for readers. The current zone must be complete. */
int32_t tecFileWriterFlush(void* fileHandle, int32_t numZonesToRetain,
                           const int32_t* zonesToRetain);

/* Flushes, cuts the file to its length, removes NAME.szplt.szhdr and clears the handle. After a
   failure, of an earlier call or in this one, the data set stays unfinished, as the last flush left
   it. */
int32_t tecFileWriterClose(void** fileHandle);

/* A name and a value of the data set, of a variable (from 1). Before the first new zone only; they
   replace those of a resumed data set. A blank value is left out. */
int32_t tecDataSetAddAuxData(void* fileHandle, const char* name, const char* value);
int32_t tecVarAddAuxData(void* fileHandle, int32_t var, const char* name, const char* value);

/* The next zone, and its number from 1. Zone types: 1 lines, 2 triangles, 3 quadrilaterals,
   4 tetrahedra, 5 bricks, 0 none of these. The four lists have an entry for each variable: type of
   the values (1 float, 2 double, 3 int32_t), zone whose values it shares (0: its own), location
   (1 nodes, 0 elements), passive (always 0). `connectivityShareZone` is 0 for a zone with
   node lists of its own. No face connections. */
int32_t tecZoneCreateFE(void* fileHandle, const char* zoneTitle, int32_t zoneType, int64_t numNodes,
                        int64_t numElements, const int32_t* varTypes,
                        const int32_t* shareVarFromZone, const int32_t* valueLocations,
                        const int32_t* passiveVarList, int32_t connectivityShareZone,
                        int64_t numFaceConnections, int32_t faceNeighborMode, int32_t* zone);

/* Time and strand of the current zone, before its values. A zone without is static. */
int32_t tecZoneSetUnsteadyOptions(void* fileHandle, int32_t zone, double solutionTime,
                                  int32_t strand);

/* The next node numbers of the current zone, element by element. */
int32_t tecZoneNodeMapWrite32(void* fileHandle, int32_t zone, int32_t partition,
                              int32_t nodesAreOneBased, int64_t count, const int32_t* nodes);

/* The next values of a variable (from 1) of the current zone. `partition` is 0. */
int32_t tecZoneVarWriteFloatValues(void* fileHandle, int32_t zone, int32_t var, int32_t partition,
                                   int64_t count, const float* values);
int32_t tecZoneVarWriteDoubleValues(void* fileHandle, int32_t zone, int32_t var, int32_t partition,
                                    int64_t count, const double* values);
int32_t tecZoneVarWriteInt32Values(void* fileHandle, int32_t zone, int32_t var, int32_t partition,
                                   int64_t count, const int32_t* values);

#ifdef __cplusplus
}
#endif
