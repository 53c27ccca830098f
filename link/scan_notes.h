#pragma once
// What the frame-line scanner counts beside its work: lines it read by its
// rules that a user should still hear about.
#include <cstdint>

namespace velmora {

// Lines of one kind that the scanner read by its rules but that a user
// should hear about: how many, and the first one's number.
struct ScanNote {
  std::uint64_t lines = 0;
  std::uint64_t firstLine = 0;  // from 1; 0 while `lines` is 0

  void Add(std::uint64_t line) {
    if (lines++ == 0) firstLine = line;
  }
};

// What the scanner counts while it reads, for the warnings at a run's end.
// The message file does not change for any of them.
struct ScanNotes {
  // Lines holding "HDLC" and "****" that are shorter than a frame line.
  ScanNote shortMarkedLines;
  // Frame lines with "A" to "F" among their cell digits, read as 17 to 22.
  ScanNote upperCaseCells;
  // Frame lines with a cell that is not "0x" and two hexadecimal digits
  // where the scanner reads it: the cells stand one or more places off.
  ScanNote misplacedCells;

  bool Any() const { return shortMarkedLines.lines + upperCaseCells.lines + misplacedCells.lines != 0; }
  // Adds the notes of the stretch of input that follows, whose line numbers
  // count from 1 after `linesBefore` lines.
  void Append(const ScanNotes& later, std::uint64_t linesBefore) {
    const auto append = [linesBefore](ScanNote& note, const ScanNote& next) {
      if (next.lines == 0) return;
      if (note.lines == 0) note.firstLine = next.firstLine + linesBefore;
      note.lines += next.lines;
    };
    append(shortMarkedLines, later.shortMarkedLines);
    append(upperCaseCells, later.upperCaseCells);
    append(misplacedCells, later.misplacedCells);
  }
};

}  // namespace velmora
