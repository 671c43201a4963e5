#pragma once

#include <vardel/core/card_data.h>
#include <vardel/core/card_data_struct.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Conformance vectors: one text file per card format, one case per line.
///
///   format CLASS                         the class that the cases are for
///   param NAME VALUE                     a value of a new format object
///   set NAME VALUE                       put before each of the following cases, until
///   reset
///   encode TYPE/SUB FACILITY CARDID REVISION => BYTES
///   decode BYTES => TYPE/SUB FACILITY CARDID REVISION
///   decode BYTES text TEXT => ...        hexadecimal text that differs from the bytes
///   decode none text TEXT => ...         a frame without a byte array
///   valid facility|cardid|revision TEXT => yes|no
///
/// Instead of its normal answer a case may give `fault NUMBER` or `error MESSAGE`; for an encode
/// the bytes of the record may follow the message (all zero otherwise), for a decode the normal
/// answer. BYTES are hexadecimal digits, 'ASCII' characters and XX*COUNT in any mix; a record's
/// remaining bytes are zero. Texts stand in double quotes, with \uHHHH for other characters. Every
/// case starts with a new format object.
namespace vardel {

enum class CaseKind { Param, Encode, Decode, Valid };

struct VectorCase {
  CaseKind kind = CaseKind::Param;
  int line = 0;
  std::vector<std::pair<std::string, std::string>> settings;

  std::string name;  // param: the member; valid: the validator's member
  std::string text;  // param: the expected value; valid: the argument
  CCardData card;    // encode: the input; decode: the expected result
  std::optional<std::vector<std::uint8_t>> bytes;  // decode: the frame's byte array
  std::string hex;                                 // decode: the frame's text

  int fault = 0;
  std::string error;
  CardDataStruct record;
  bool isValid = false;
};

struct VectorFile {
  std::string format;
  std::vector<VectorCase> cases;
};

/// Reads one file; throws std::runtime_error with the line number where it is malformed.
VectorFile ReadVectors(const std::string& path);

/// The files of a folder, in order of their names.
std::vector<std::string> VectorPaths(const std::string& folder);

}  // namespace vardel
