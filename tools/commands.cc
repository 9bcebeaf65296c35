#include "commands.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include "bundled_sample.h"
#include "dump.h"
#include "types.h"

namespace keyasn {
namespace tool {

namespace {

std::string UpperLabel(const std::string& type) {
  std::string label = "KEYASN ";
  for (char c : type) label += c == '-' ? ' ' : static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return label;
}

}  // namespace

void Report(std::ostream& err, const std::string& name, const std::string& message) {
  err << "keyasn: " << name << ": " << message << '\n';
}

std::string WalkErrorText(const WalkError& error) {
  return "error at offset " + std::to_string(error.offset) + ": " + std::to_string(error.code) +
         " " + CodeMeaning(error.code) + ": " + error.meaning;
}

std::string InputName(const std::string& file) {
  return file.empty() ? "<bundled sample>" : file == "-" ? "<stdin>" : file;
}

int FinishOutput(std::ostream& out, std::ostream& err, const std::string& name,
                 const WalkError* damage) {
  out.flush();
  if (damage != nullptr) {
    Report(err, name, WalkErrorText(*damage));
    return kExitMalformed;
  }
  if (!out) {
    Report(err, name, "cannot write the output");
    return kExitIo;
  }
  return kExitOk;
}

Bytes ReadInput(const std::string& file, InputForm form, std::string* name) {
  Source source = file.empty() ? BundledSample() : ReadSource(file);
  *name = source.name;
  return DecodeInput(source.bytes, form, nullptr);
}

Source BundledSample() {
  Source source;
  source.name = "<bundled sample>";
  source.bytes.assign(kBundledSample, kBundledSample + kBundledSampleSize);
  return source;
}

int RunDump(const DumpRequest& request, std::ostream& out, std::ostream& err) {
  std::string name = InputName(request.file);
  try {
    const Bytes der = ReadInput(request.file, request.inform, &name);
    WalkOptions options;
    options.open_encapsulated = request.encapsulated;
    const Tree tree = Walk(der.data(), der.size(), options);
    if (request.json) {
      out << DumpJson(tree, der.data()).dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    } else {
      DumpText(tree, der.data(), request.full, out);
    }
    return FinishOutput(out, err, name, tree.failed ? &tree.error : nullptr);
  } catch (const ToolError& e) {
    Report(err, name, e.what());
    return e.status();
  }
}

int RunShow(const ShowRequest& request, std::ostream& out, std::ostream& err) {
  std::string name = InputName(request.file);
  const std::string type_name = request.type.empty() ? "container" : request.type;
  const TypeInfo* type = FindType(type_name);
  if (type == nullptr) {
    err << "keyasn show: unknown TYPE \"" << type_name << "\" (see keyasn show --help)\n";
    return kExitUsage;
  }
  try {
    const Bytes der = ReadInput(request.file, request.inform, &name);
    if (type->single_element) {
      // The structure readers stop at what they need; the walk first checks the
      // whole input, so that damage is reported with its offset.
      WalkOptions options;
      options.open_encapsulated = false;
      const Tree tree = Walk(der.data(), der.size(), options);
      if (tree.failed) {
        Report(err, name, WalkErrorText(tree.error));
        return kExitMalformed;
      }
      if (tree.roots.size() > 1) {
        const Element& second = tree.elements[tree.roots[1]];
        Report(err, name, "error at offset " + std::to_string(second.offset) +
                              ": data after the " + type->structure + " element");
        return kExitMalformed;
      }
    }
    View view;
    type->show(der, &view);
    const Json json = view.ToJson();
    // Say so when encode would not give these octets back (forms the library
    // reads but does not write, such as legacy members).
    std::string note;
    try {
      if (type->encode(JsonIn(json, "")) != der) {
        note = "encode --as " + type_name +
               " of this JSON gives other octets: the input is not in the form the library writes";
      }
    } catch (const ToolError& e) {
      note = "encode --as " + type_name + " of this JSON fails: " + e.what();
    }
    if (request.json) {
      out << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    } else {
      out << "# " << type->structure << " (" << type->name << ") from " << name << '\n'
          << view.ToText(request.full);
    }
    out.flush();
    if (!out) {
      Report(err, name, "cannot write the output");
      return kExitIo;
    }
    if (!note.empty()) Report(err, name, "note: " + note);
    return kExitOk;
  } catch (const ToolError& e) {
    Report(err, name, e.what());
    return e.status();
  }
}

int RunEncode(const EncodeRequest& request, std::ostream& out, std::ostream& err) {
  const TypeInfo* type = FindType(request.type);
  if (type == nullptr) {
    err << "keyasn encode: unknown TYPE \"" << request.type << "\" (see keyasn encode --help)\n";
    return kExitUsage;
  }
  std::string name = request.file == "-" ? "<stdin>" : request.file;
  Bytes encoding;
  try {
    Source source = ReadSource(request.file);
    name = source.name;
    Json document;
    try {
      document = Json::parse(source.bytes.begin(), source.bytes.end());
    } catch (const Json::parse_error& e) {
      throw ToolError(kExitMalformed, std::string("not JSON: ") + e.what());
    }
    encoding = type->encode(JsonIn(document, ""));
  } catch (const ToolError& e) {
    Report(err, name, e.what());
    return e.status();
  }
  std::string text;
  switch (request.outform) {
    case OutputForm::kDer:
      text.assign(encoding.begin(), encoding.end());
      break;
    case OutputForm::kHex:
      text = ToHex(encoding) + "\n";
      break;
    case OutputForm::kPem: {
      const std::string label = UpperLabel(type->name);
      text = "-----BEGIN " + label + "-----\n" + EncodeBase64(encoding) + "-----END " + label + "-----\n";
      break;
    }
  }
  if (request.output.empty() || request.output == "-") {
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.flush();
    if (!out) {
      Report(err, "<stdout>", "cannot write the output");
      return kExitIo;
    }
    return kExitOk;
  }
  std::ofstream file(request.output, std::ios::binary | std::ios::trunc);
  if (!file) {
    Report(err, request.output, std::string("cannot open for writing: ") + std::strerror(errno));
    return kExitIo;
  }
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  file.close();
  if (!file) {
    Report(err, request.output, "cannot write");
    return kExitIo;
  }
  return kExitOk;
}

}  // namespace tool
}  // namespace keyasn
