// keyasn: inspect any BER/DER file and the key records, with JSON in and out.
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "lint_command.h"
#include "oid_config.h"
#include "types.h"
#include "version.h"
#include "view_command.h"

namespace {

using keyasn::tool::InputForm;
using keyasn::tool::OutputForm;

const std::map<std::string, InputForm> kInputForms = {
    {"der", InputForm::kDer}, {"pem", InputForm::kPem},
    {"base64", InputForm::kBase64}, {"hex", InputForm::kHex}};
const std::map<std::string, OutputForm> kOutputForms = {
    {"der", OutputForm::kDer}, {"pem", OutputForm::kPem}, {"hex", OutputForm::kHex}};

const char kExamples[] =
    "EXAMPLES:\n"
    "  keyasn dump cert.pem                    the element tree of a certificate\n"
    "  cat cert.der | keyasn dump --depth 2    the top two levels, from a pipe\n"
    "  keyasn dump --offset 4 --octets 0 cert.der\n"
    "                                          the element at offset 4, contents in full\n"
    "  keyasn extract --offset 4 -o tbs.der cert.der\n"
    "                                          that element to a file\n"
    "  keyasn dump --json x.der | keyasn encode > y.der\n"
    "                                          JSON and back (y.der is x.der)\n"
    "  keyasn show --as container key.der      a key container, member by member\n"
    "  keyasn view --as container -o key.html key.der\n"
    "                                          the same as a page: tree, octets, members\n"
    "See keyasn(1).\n";

std::string TypeList() {
  std::string text = "TYPEs:\n";
  for (const keyasn::tool::TypeInfo& type : keyasn::tool::AllTypes()) {
    std::string name = type.name;
    name.resize(20, ' ');
    text += "  " + name + type.structure + ": " + type.summary + "\n";
  }
  return text;
}

void AddInform(CLI::App* command, InputForm* form) {
  command->add_option("--inform", *form,
                      "Input form: der, pem, base64 or hex (default: detected)")
      ->transform(CLI::CheckedTransformer(kInputForms, CLI::ignore_case).description(""))
      ->type_name("FORM");
}

void AddOutform(CLI::App* command, OutputForm* form) {
  command->add_option("--outform", *form, "Output form: der (default), pem or hex")
      ->transform(CLI::CheckedTransformer(kOutputForms, CLI::ignore_case).description(""))
      ->type_name("FORM");
}

CLI::Option* AddOffsets(CLI::App* command, std::vector<std::size_t>* offsets, const char* help) {
  return command->add_option("--offset", *offsets, help)
      ->type_name("N")
      ->allow_extra_args(false);
}

void AddOids(CLI::App* command, std::vector<std::string>* files) {
  command->add_option("--oids", *files,
                      "Read object identifier names from FILE (dumpasn1 configuration or\n"
                      "openssl -oid format; repeatable); 'none': no file, not even\n" +
                          keyasn::tool::kSystemOidFile)
      ->type_name("FILE")
      ->allow_extra_args(false);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{
      "keyasn " KEYASN_VERSION ": inspect BER/DER files and key records, with JSON in and out.\n"
      "Input may be raw DER/BER, PEM, base64 or hex text (detected); without FILE,\n"
      "standard input when it is a pipe or a file, otherwise the bundled sample.\n"
      "Exit status: 0 success, 1 usage, 2 malformed input, 3 I/O error,\n"
      "4 lint found a DER error.",
      "keyasn"};
  app.set_version_flag("--version", [] { return keyasn::tool::VersionText(KEYASN_VERSION); });
  app.require_subcommand(1, 1);
  app.footer(kExamples);

  std::vector<std::string> oid_files;
  keyasn::tool::DumpRequest dump;
  CLI::App* dump_command = app.add_subcommand(
      "dump", "Print the element tree of any BER/DER input, one line per element\n"
              "(offset, header length, contents length, cons/prim, type, value,\n"
              "then '! RULE' for each DER rule the element breaks, as lint).");
  dump_command->add_option("FILE", dump.file, "Input file, or - for standard input");
  dump_command->add_flag("--json", dump.json, "Print a JSON array of the top-level elements");
  AddOffsets(dump_command, &dump.offsets,
             "Start at the element at offset N (repeatable: each inside the one before,\n"
             "whose contents are read as BER even in an OCTET or BIT STRING)");
  dump_command->add_option("--depth", dump.depth,
                           "Show N levels; deeper elements are summarised (0: all)")
      ->type_name("N")->check(CLI::NonNegativeNumber);
  dump_command->add_option("--octets", dump.octets,
                           "Contents octets shown per element (default 16; 0: all)")
      ->type_name("N");
  dump_command->add_flag("--full", dump.full, "Show all contents octets (--octets 0)");
  bool no_encap = false;
  dump_command->add_flag("--no-encap", no_encap,
                         "Do not open OCTET STRING and BIT STRING contents that hold DER");
  AddInform(dump_command, &dump.inform);
  AddOids(dump_command, &oid_files);

  keyasn::tool::ExtractRequest extract;
  CLI::App* extract_command = app.add_subcommand(
      "extract", "Write the element at an offset (identifier, length and contents).");
  extract_command->add_option("FILE", extract.file, "Input file, or - for standard input");
  AddOffsets(extract_command, &extract.offsets,
             "The element at offset N (repeatable, as for dump)")->required();
  extract_command->add_flag("--contents", extract.contents,
                            "Write the contents octets only (of a BIT STRING, without the\n"
                            "unused-bits octet)");
  extract_command->add_option("-o,--output", extract.output, "Output file (default: standard output)");
  AddOutform(extract_command, &extract.outform);
  bool extract_no_encap = false;
  extract_command->add_flag("--no-encap", extract_no_encap,
                            "Do not look inside OCTET STRING and BIT STRING contents");
  AddInform(extract_command, &extract.inform);

  keyasn::tool::LintRequest lint;
  CLI::App* lint_command = app.add_subcommand(
      "lint", "Check any BER/DER input against the DER rules of X.690, one line per\n"
              "finding (offset, severity, rule id, message), then a summary.\n"
              "Exit status 4 when a finding is an error.");
  lint_command->add_option("FILE", lint.file, "Input file, or - for standard input");
  lint_command->add_flag("--json", lint.json,
                         "Print a JSON array of the findings (offset, depth, rule, severity, "
                         "message, path)");
  AddInform(lint_command, &lint.inform);

  keyasn::tool::ShowRequest show;
  CLI::App* show_command = app.add_subcommand(
      "show", "Decode one key structure and print its members by name.\n"
              "Without FILE or standard input: the bundled sample container.");
  show_command->footer(TypeList());
  show_command->add_option("FILE", show.file, "Input file, or - for standard input");
  show_command->add_option("--as", show.type, "The structure TYPE (required but for the sample)")
      ->type_name("TYPE");
  show_command->add_flag("--json", show.json, "Print the members as JSON (input of encode)");
  show_command->add_flag("--full", show.full, "Do not shorten long octet strings");
  show_command->add_flag("--force", show.force, "Show input that does not fit the TYPE");
  AddInform(show_command, &show.inform);
  AddOids(show_command, &oid_files);

  keyasn::tool::ViewRequest view;
  CLI::App* view_command = app.add_subcommand(
      "view", "Write one self-contained HTML page of any BER/DER input: the element tree\n"
              "as dump reads it beside the octets, which highlight the element under the\n"
              "mouse; with --as, the structure's members too. The page loads nothing:\n"
              "it opens from a file with the network off.");
  view_command->footer(TypeList());
  view_command->add_option("FILE", view.file, "Input file, or - for standard input");
  view_command->add_option("--as", view.type, "Also list the members of this structure TYPE")
      ->type_name("TYPE");
  view_command->add_option("-o,--output", view.output, "Output file (default: standard output)");
  view_command->add_flag("--force", view.force,
                         "Make a page of an input larger than 1 MiB (it opens slowly)");
  AddInform(view_command, &view.inform);
  AddOids(view_command, &oid_files);

  keyasn::tool::EncodeRequest encode;
  CLI::App* encode_command = app.add_subcommand(
      "encode", "Write the octets of a JSON document: what dump --json prints (no --as,\n"
                "or --as der), or a key structure as show --json prints it.");
  encode_command->footer(TypeList());
  encode_command->add_option("FILE", encode.file, "JSON file, or - for standard input (default)");
  encode_command->add_option("--as", encode.type, "The structure TYPE (default: der)")->type_name("TYPE");
  encode_command->add_option("-o,--output", encode.output, "Output file (default: standard output)");
  AddOutform(encode_command, &encode.outform);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) return app.exit(e);
    std::cerr << "keyasn: " << e.what() << "\nkeyasn: see keyasn --help\n";
    return keyasn::tool::kExitUsage;
  }
  std::ios::sync_with_stdio(false);
  try {
    keyasn::tool::LoadOidNames(oid_files);
  } catch (const keyasn::tool::ToolError& e) {
    std::cerr << "keyasn: " << e.what() << '\n';
    return e.status();
  }
  if (*dump_command) {
    dump.encapsulated = !no_encap;
    return keyasn::tool::RunDump(dump, std::cout, std::cerr);
  }
  if (*extract_command) {
    extract.encapsulated = !extract_no_encap;
    return keyasn::tool::RunExtract(extract, std::cout, std::cerr);
  }
  if (*lint_command) return keyasn::tool::RunLint(lint, std::cout, std::cerr);
  if (*show_command) return keyasn::tool::RunShow(show, std::cout, std::cerr);
  if (*view_command) return keyasn::tool::RunView(view, std::cout, std::cerr);
  return keyasn::tool::RunEncode(encode, std::cout, std::cerr);
}
