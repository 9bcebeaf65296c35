// keyasn: inspect any BER/DER file and the key records, with JSON in and out.
#include <iostream>
#include <map>
#include <string>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "lint_command.h"
#include "types.h"

namespace {

using keyasn::tool::InputForm;
using keyasn::tool::OutputForm;

const std::map<std::string, InputForm> kInputForms = {
    {"der", InputForm::kDer}, {"pem", InputForm::kPem},
    {"base64", InputForm::kBase64}, {"hex", InputForm::kHex}};
const std::map<std::string, OutputForm> kOutputForms = {
    {"der", OutputForm::kDer}, {"pem", OutputForm::kPem}, {"hex", OutputForm::kHex}};

std::string TypeList() {
  std::string text = "TYPEs:\n";
  for (const keyasn::tool::TypeInfo& type : keyasn::tool::AllTypes()) {
    std::string name = type.name;
    name.resize(20, ' ');
    text += "  " + name + type.structure + ": " + type.summary + "\n";
  }
  return text;
}

// AddInput adds the input operand and its form.
void AddInput(CLI::App* command, std::string* file, InputForm* form) {
  command->add_option("FILE", *file, "Input file, or - for standard input");
  command->add_option("--inform", *form,
                      "Input form: der, pem, base64 or hex (default: detected)")
      ->transform(CLI::CheckedTransformer(kInputForms, CLI::ignore_case));
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{
      "keyasn " KEYASN_VERSION ": inspect BER/DER files and key records, with JSON in and out.\n"
      "Input may be raw DER/BER, PEM, base64 or hex text (detected).\n"
      "Exit status: 0 success, 1 usage, 2 malformed input, 3 I/O error,\n"
      "4 lint found a DER error.",
      "keyasn"};
  app.set_version_flag("--version", "keyasn " KEYASN_VERSION);
  app.require_subcommand(1, 1);

  keyasn::tool::DumpRequest dump;
  CLI::App* dump_command = app.add_subcommand(
      "dump", "Print the element tree of any BER/DER input, one line per element\n"
              "(offset, header length, contents length, cons/prim, type, value).\n"
              "Without FILE: the bundled sample container.");
  AddInput(dump_command, &dump.file, &dump.inform);
  dump_command->add_flag("--json", dump.json, "Print a JSON array of the top-level elements");
  dump_command->add_flag("--full", dump.full, "Do not shorten long octet strings");
  bool no_encap = false;
  dump_command->add_flag("--no-encap", no_encap,
                         "Do not open OCTET STRING and BIT STRING contents that hold DER");

  keyasn::tool::LintRequest lint;
  CLI::App* lint_command = app.add_subcommand(
      "lint", "Check any BER/DER input against the DER rules of X.690, one line per\n"
              "finding (offset, severity, rule id, message), then a summary.\n"
              "Exit status 4 when a finding is an error. Without FILE: the bundled sample.");
  AddInput(lint_command, &lint.file, &lint.inform);
  lint_command->add_flag("--json", lint.json,
                         "Print a JSON array of the findings (offset, depth, rule, severity, "
                         "message, path)");

  keyasn::tool::ShowRequest show;
  CLI::App* show_command = app.add_subcommand(
      "show", "Decode one key structure and print its members by name.\n"
              "Without FILE: the bundled sample container (--as container).");
  show_command->footer(TypeList());
  AddInput(show_command, &show.file, &show.inform);
  show_command->add_option("--as", show.type, "The structure TYPE (required with FILE)")
      ->type_name("TYPE");
  show_command->add_flag("--json", show.json, "Print the members as JSON (input of encode)");
  show_command->add_flag("--full", show.full, "Do not shorten long octet strings");

  keyasn::tool::EncodeRequest encode;
  CLI::App* encode_command = app.add_subcommand(
      "encode", "Build a key structure from its JSON form (as show --json prints it)\n"
                "with the library's writers.");
  encode_command->footer(TypeList());
  encode_command->add_option("FILE", encode.file, "JSON file, or - for standard input (default)");
  encode_command->add_option("--as", encode.type, "The structure TYPE")->required()->type_name("TYPE");
  encode_command->add_option("-o,--output", encode.output, "Output file (default: standard output)");
  encode_command->add_option("--outform", encode.outform, "Output form: der (default), pem or hex")
      ->transform(CLI::CheckedTransformer(kOutputForms, CLI::ignore_case));

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    const int code = app.exit(e);
    return code == 0 ? keyasn::tool::kExitOk : keyasn::tool::kExitUsage;
  }
  std::ios::sync_with_stdio(false);
  if (*dump_command) {
    dump.encapsulated = !no_encap;
    return keyasn::tool::RunDump(dump, std::cout, std::cerr);
  }
  if (*lint_command) return keyasn::tool::RunLint(lint, std::cout, std::cerr);
  if (*show_command) {
    if (!show.file.empty() && show.type.empty()) {
      std::cerr << "keyasn show: --as TYPE is required with a FILE\n" << TypeList();
      return keyasn::tool::kExitUsage;
    }
    return keyasn::tool::RunShow(show, std::cout, std::cerr);
  }
  return keyasn::tool::RunEncode(encode, std::cout, std::cerr);
}
