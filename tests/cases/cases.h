#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Cases as text, one per line, for the library itself and for the automation server alike.
///
///   NAME = CLASS                            a new object
///   NAME = NAME.Member ARGUMENT...          keeps what a member returns
///   NAME.Member ARGUMENT... => ANSWER       calls or gets
///   NAME.Member ARGUMENT... := VALUE        puts; a fault may follow: => fault 6
///   reset                                   forgets all names
///
/// Words are names of objects, numbers, True and False, nothing, missing, texts in double quotes
/// with \xHH for any byte of their UTF-8, bytes in hexadecimal digits. An answer is `fault NUMBER`,
/// or the value: an object is shown by its name here, a record by its bytes up to the last that is
/// not zero, an array as [VALUE...]. Two members exist here alone: NAME.Err gives ErrNumber and
/// ErrName, NAME.Card the five fields of a card as TYPE/SUB FACILITY CARDID REVISION.
///
/// Files for one card format have cases of their own, each with a new format object:
///
///   format CLASS                            the class that the cases are for
///   set NAME VALUE                          put before each of the following cases, until reset
///   format.Member ARGUMENT... => ANSWER
///   encode TYPE/SUB FACILITY CARDID REVISION => BYTES
///   decode BYTES => TYPE/SUB FACILITY CARDID REVISION
///   decode BYTES text TEXT => ...           hexadecimal text that differs from the bytes
///   decode none text TEXT => ...            a frame without a byte array
///
/// Before its normal answer, or instead of it, an encode or decode may give `error MESSAGE`. BYTES
/// are hexadecimal digits, 'ASCII' characters and XX*COUNT in any mix; a record's remaining bytes
/// are zero. Each encode is also tried through the facade, where that takes such cards.
namespace vardel {

struct Word {
  std::string text;
  bool isText = false;  // stood in quotes
};
using Words = std::vector<Word>;

/// Bytes and hexadecimal text that need not agree.
struct FrameData {
  std::optional<std::vector<std::uint8_t>> bytes;
  std::string hex;
};

struct Call {
  std::string object, member;
  Words arguments = {};
  bool isPut = false;
  std::string keepAs = "";  // the name that the result gets, unless empty
};

/// The side that the cases are run on. Objects are known by name.
class CaseHost {
 public:
  virtual ~CaseHost() = default;

  virtual void New(const std::string& name, const std::string& className) = 0;
  /// The call's answer as a case shows it.
  virtual std::string Run(const Call& call) = 0;
  /// How many kinds of frames this side can make of the data, and makes one.
  virtual int FrameKinds(const FrameData& data) const = 0;
  virtual void NewFrame(const std::string& name, const FrameData& data, int kind) = 0;
  virtual void Reset() = 0;
};

// Values as cases show them.
std::string ShowText(std::string_view text);
std::string ShowNumber(double number);
std::string ShowRecord(std::span<const std::uint8_t> bytes);

/// Runs a file's cases and expects their answers.
void RunCases(const std::string& path, CaseHost& host);

/// The files of a folder below the tests, in order of their names.
std::vector<std::string> CaseFiles(const std::string& folder);

}  // namespace vardel
