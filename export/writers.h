// The export formats. Each writes the whole plan to out as it goes.
#pragma once

#include "exportplan.h"
#include "outputstream.h"

namespace kesu::toolvok {

// Names the VHDL exports declare or use besides their waves, which a wave
// must not hide.
QSet<QByteArray> vhdlOwnNames();
QSet<QByteArray> testBenchNames(const QByteArray& design);

void writeVerilogVectors(const ExportPlan& plan, OutputStream& out);
void writeVhdlVectors(const ExportPlan& plan, OutputStream& out);
void writeVhdlTestBench(const ExportPlan& plan, OutputStream& out);
void writeVcd(const ExportPlan& plan, OutputStream& out);
void writeWaveJson(const ExportPlan& plan, OutputStream& out);

// Shared by the two VHDL writers: "signal name : std_logic_vector(7 downto 0)"
// without the keyword, and the stimulus process of one signal.
QByteArray vhdlType(const ExportSignal& signal);
void writeVhdlStimulus(const ExportPlan& plan, const ExportSignal& signal, OutputStream& out);

} // namespace kesu::toolvok
