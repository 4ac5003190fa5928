/* Block data: target mean values of a variable over given sets of simulation-grid
 * nodes (blocks), each with a tolerance and a pair of activation proportions.
 *
 * nuvo_blockData is the record used by the simulation (one per variable);
 * nuvo_blockDataASCII is its text form, naming the block data file. Both own every
 * pointer they hold; their Free functions release it and re-initialise the record,
 * never the record itself.
 *
 * Block data file (plain text, items separated by white space): nblock, then per
 * block "nnode value tolerance activatePropMin activatePropMax" followed by nnode
 * lines of 0-based grid indices "ix iy iz".
 *
 * In the simulation, a candidate value is penalised when it would take the running
 * mean of a block holding the node out of a band around the target; the band
 * narrows to half the tolerance as the block fills, so the block's final mean ends
 * within its tolerance when the training images offer the values to keep it there.
 * A block's constraint applies while the share of its nodes already informed lies
 * within [activatePropMin, activatePropMax] (0 and 1: from its first node to its
 * last).
 */
#ifndef NUVO_BLOCKDATA_H
#define NUVO_BLOCKDATA_H

#include <stdio.h>

#include "nuvo_export.h"
#include "nuvo_progress.h"

NUVO_EXTERN_C_BEGIN

/** Values of blockDataUsage. */
typedef enum { NUVO_BLOCK_DATA_NONE = 0, NUVO_BLOCK_DATA_MEAN = 1 } nuvo_blockDataUsage;

typedef struct {
  int blockDataUsage;      /**< nuvo_blockDataUsage */
  int nblock;              /**< number of blocks */
  int *nnode;              /**< owned; nodes of each block */
  int **ix, **iy, **iz;    /**< owned; per block, owned arrays of nnode[b] grid indices */
  double *value;           /**< owned; target mean of each block */
  double *tolerance;       /**< owned; accepted deviation of the block mean */
  double *activatePropMin; /**< owned; lower activation proportion, in [0, 1] */
  double *activatePropMax; /**< owned; upper activation proportion, in [0, 1] */
} nuvo_blockData;

typedef struct {
  int blockDataUsage;      /**< nuvo_blockDataUsage */
  char *blockDataFileName; /**< owned buffer of NUVO_FILE_NAME_MAX + 1 bytes; usage 1 */
} nuvo_blockDataASCII;

/* ---- nuvo_blockData ---- */

/** Usage 0, no block, every pointer null. */
NUVO_API void NUVOInitBlockData(nuvo_blockData *bd);
/** Releases what bd owns and re-initialises it; accepts a partly filled record
 *  (per-block index arrays are released up to nblock, null entries tolerated). */
NUVO_API void NUVOFreeBlockData(nuvo_blockData *bd);
/** The usage, the number of blocks and one line per block, each starting with
 *  prefix. Nothing but the usage line is printed for usage 0. Returns 0. */
NUVO_API int NUVOPrintBlockData(const nuvo_blockData *bd, const char *prefix, FILE *stream);
/** Checks the record, first failure wins; puts 0, -2920 (usage), -2941 (no block,
 *  or block arrays missing),
 *  or the first block failure (-2942 nnode, -2954 tolerance, -2951 / -2952 /
 *  -2953 activation proportions) in *error. pm and callback are accepted for the
 *  uniform validator shape; nothing is reported. Returns 0. */
NUVO_API int NUVOValidateBlockData(const nuvo_blockData *bd, nuvo_progressMonitor *pm,
                                   nuvo_progressCallback callback, int *error);
/** Reads a block data file from stream into an initialised record (usage left
 *  as is). Returns 0, -2980 for an item that cannot be read, -3 for a block of
 *  zero nodes, -1 allocation. A negative nblock is kept for the validator. On
 *  failure the record is left partly filled for NUVOFreeBlockData. */
NUVO_API int NUVOReadBlockData(nuvo_blockData *bd, FILE *stream);
/** Writes the blocks of bd (which must hold its nblock blocks) in the block data
 *  file format, reals as "%14.6lf". Returns 0. */
NUVO_API int NUVOWriteBlockData(const nuvo_blockData *bd, FILE *stream);

/* ---- nuvo_blockDataASCII ---- */

/** Usage 0, null file name. */
NUVO_API void NUVOInitBlockDataASCII(nuvo_blockDataASCII *bd);
/** Releases the file name and re-initialises. */
NUVO_API void NUVOFreeBlockDataASCII(nuvo_blockDataASCII *bd);
/** The usage and the file name, each line starting with prefix. Returns 0. */
NUVO_API int NUVOPrintBlockDataASCII(const nuvo_blockDataASCII *bd, const char *prefix,
                                     FILE *stream);
/** Reads one variable's block data section: the usage and, for usage 1, the file
 *  name. Returns 0, -3001 usage, -3006 file name (unreadable or 256 characters or
 *  more), -1 allocation. */
NUVO_API int NUVOReadBlockDataASCII(nuvo_blockDataASCII *bd, FILE *stream);
/** Fills the initialised record out from in; for usage 1 the named block data
 *  file is read. Returns 0, -2960 when the file cannot be opened, the codes of
 *  NUVOReadBlockData, or -1. On failure out is left partly filled. */
NUVO_API int NUVOBlockDataASCIIToBlockData(const nuvo_blockDataASCII *in, nuvo_blockData *out);

NUVO_EXTERN_C_END

#endif /* NUVO_BLOCKDATA_H */
