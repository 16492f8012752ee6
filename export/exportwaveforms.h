#pragma once

#include "progress.h"

namespace kesu::toolvok {

// Exports a saved waveform file. The arguments, in any order: the type
// ("-verilog" Verilog test vectors, "-vhdl93" VHDL test vectors, "-vhdl94"
// a VHDL test bench, "-vcd" a value change dump, "-wavejson" WaveJSON for WaveDrom), the input file and
// "-out=" with the output file; no program name in front. Returns 0 on
// success; otherwise 1 with one line on stderr, and an existing output file
// is left as it was. progress hears of the reading and of the writing; when
// it stops the export, the result is 2 and the output file is left as well.
int ExportWaveforms(int argc, char** argv, const Progress& progress = {});

} // namespace kesu::toolvok
