#pragma once
#include "common/MachineTypes.h"

// The expansion boards behind the SPI link: 24 inputs in three bytes, 16 or 24 outputs of one frame each.
// Errors of the link are not looked at; of one that could not be opened nothing is asked, and its inputs read 0.
// One-byte frames are atomic on it; no lock.
class cvantorctrl
{
public:
    // Opens the link for the two SPI boards, for others it only notes the version. Always true; a program without the
    // right to it (MayUsePwmAndSpi) opens none, with a line in the operator's log.
    static bool InitVantorCtrl(eVantorController eCtrl);

    // Reads the three input bytes, the first received first; the result is their number.
    static int ReadAllInputs(char* buffer);
    // 0 or 1; an input that the board does not have reads 0. Reads all inputs anew.
    static quint8 ReadInput(unsigned short pin);
    static void WriteOutput(unsigned char pin, unsigned char value);
    // The frame that brings one output to a level: bit 7 the level, 6 to 4 the index, 3 always one, 1 and 0 the group.
    static unsigned char CreateOutputData(unsigned char pin, unsigned char value);

    static eVantorController m_eCtrlVersion;
    static qint32 h_SpiInputCtrl, h_SpiOutputCtrl;
};
