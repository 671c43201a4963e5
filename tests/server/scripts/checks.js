// What every JScript test begins with.
var checks = 0, failures = 0;
function require(what, passed) {
  ++checks;
  if (!passed) { ++failures; WScript.Echo(what); }
}
function equal(what, expected, actual) {
  require(what + ": " + actual + " instead of " + expected, expected === actual);
}
function fault(what, number, description, call) {
  try { call(); require(what + " does not fail", false); } catch (e) {
    equal(what, number + " " + description, (e.number & 0xFFFF) + " " + e.description);
  }
}
