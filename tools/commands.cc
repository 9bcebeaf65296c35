#include "commands.h"

#include <cerrno>
#include <cstring>
#include <functional>

#include "bundled_sample.h"
#include "der_json.h"
#include "dump.h"
#include "dump_stream.h"
#include "load.h"
#include "locate.h"
#include "type_check.h"
#include "types.h"

namespace keyasn {
namespace tool {

namespace {

std::string UpperLabel(const std::string& type) {
  std::string label = "KEYASN ";
  for (char c : type) label += c == '-' ? ' ' : static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return label;
}

// Releaser lets the pages of a mapped input go once the walk is past them.
std::function<void(std::size_t)> Releaser(Input* input) {
  return [input](std::size_t offset) { input->Release(offset); };
}

}  // namespace

// Malformed reports a fault of the input, saying which form it was read as.
int Malformed(std::ostream& err, const Input& input, const std::string& message) {
  Report(err, input.name(), input.Assumed() + ": " + message + input.Hint());
  return kExitMalformed;
}

// Open loads the input of a command; a failure is reported and its status returned.
int Open(const std::string& file, InputForm form, std::ostream& err, std::unique_ptr<Input>* input) {
  try {
    *input = LoadInput(file, form);
    return kExitOk;
  } catch (const ToolError& e) {
    Report(err, InputName(file), e.what());
    return e.status();
  }
}

std::string InputName(const std::string& file) {
  if (file.empty()) return StandardInputIsData() ? "<stdin>" : "<bundled sample>";
  return file == "-" ? "<stdin>" : file;
}

Source BundledSample() {
  Source source;
  source.name = "<bundled sample>";
  source.bytes.assign(kBundledSample, kBundledSample + kBundledSampleSize);
  return source;
}

int RunDump(const DumpRequest& request, std::ostream& out, std::ostream& err) {
  std::unique_ptr<Input> input;
  if (const int status = Open(request.file, request.inform, err, &input)) return status;
  Span span{0, input->size()};
  if (!request.offsets.empty()) {
    try {
      span = Locate(input->data(), input->size(), request.offsets, request.encapsulated,
                    Releaser(input.get()))
                 .whole;
    } catch (const ToolError& e) {
      return Malformed(err, *input, e.what());
    }
  }
  PrintOptions print;
  print.json = request.json;
  print.octets = request.full ? 0 : request.octets;
  print.depth = request.depth;
  print.base = span.offset;
  print.size = span.size;
  WalkOptions options;
  options.open_encapsulated = request.encapsulated;
  errno = 0;
  const WalkResult result = PrintWalk(input->data(), print, options, out, Releaser(input.get()));
  out.flush();
  if (!out) {
    Report(err, "<stdout>", WriteFailure());
    return kExitIo;
  }
  if (result.failed) return Malformed(err, *input, WalkErrorText(result.error, span.offset));
  return kExitOk;
}

int RunExtract(const ExtractRequest& request, std::ostream& out, std::ostream& err) {
  std::unique_ptr<Input> input;
  if (const int status = Open(request.file, request.inform, err, &input)) return status;
  Located at;
  try {
    at = Locate(input->data(), input->size(), request.offsets, request.encapsulated,
                Releaser(input.get()));
  } catch (const ToolError& e) {
    return Malformed(err, *input, e.what());
  }
  const Span span = request.contents ? at.contents : at.whole;
  return WriteOctets(input->data() + span.offset, span.size, request.outform, "KEYASN ELEMENT",
                     request.output, out, err);
}

int RunShow(const ShowRequest& request, std::ostream& out, std::ostream& err) {
  std::unique_ptr<Input> input;
  if (const int status = Open(request.file, request.inform, err, &input)) return status;
  if (request.type.empty() && !input->sample()) {
    Report(err, "show", "--as TYPE is required with a FILE or standard input (see keyasn show --help)");
    return kExitUsage;
  }
  const std::string type_name = request.type.empty() ? "container" : request.type;
  const TypeInfo* type = FindType(type_name);
  if (type == nullptr) {
    Report(err, "show", "unknown TYPE \"" + type_name + "\" (see keyasn show --help)");
    return kExitUsage;
  }
  if (input->size() > kMaxInputSize) {
    return Malformed(err, *input, "larger than " + std::to_string(kMaxInputSize) +
                                      " octets, more than the library reads");
  }
  const Bytes der(input->data(), input->data() + input->size());
  try {
    if (type->single_element) {
      // The structure readers stop at what they need; the walk first checks the
      // whole input, so that damage is reported with its offset.
      WalkOptions options;
      options.open_encapsulated = false;
      const Tree tree = Walk(der.data(), der.size(), options);
      if (tree.failed) return Malformed(err, *input, WalkErrorText(tree.error));
      if (tree.roots.size() > 1) {
        const Element& second = tree.elements[tree.roots[1]];
        return Malformed(err, *input, "error at offset " + std::to_string(second.offset) +
                                          ": data after the " + type->structure + " element");
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
    const std::string misfit = CheckType(*type, der, note);
    if (!misfit.empty() && !request.force) {
      return Malformed(err, *input, "not a " + type_name + " (" + type->structure + "): " + misfit +
                                        " (--force shows it anyway)");
    }
    errno = 0;
    if (request.json) {
      out << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    } else {
      out << "# " << type->structure << " (" << type->name << ") from " << input->name() << '\n'
          << view.ToText(request.full);
    }
    out.flush();
    if (!out) {
      Report(err, "<stdout>", WriteFailure());
      return kExitIo;
    }
    if (!note.empty()) Report(err, input->name(), "note: " + note);
    return kExitOk;
  } catch (const ToolError& e) {
    if (e.status() == kExitMalformed) return Malformed(err, *input, e.what());
    Report(err, input->name(), e.what());
    return e.status();
  }
}

int RunEncode(const EncodeRequest& request, std::ostream& out, std::ostream& err) {
  const bool elements = request.type.empty() || request.type == "der";
  const TypeInfo* type = elements ? nullptr : FindType(request.type);
  if (!elements && type == nullptr) {
    Report(err, "encode", "unknown TYPE \"" + request.type + "\" (see keyasn encode --help)");
    return kExitUsage;
  }
  std::string name = InputName(request.file);
  Bytes encoding;
  try {
    Source source = ReadSource(request.file);
    name = source.name;
    Json document;
    try {
      document = Json::parse(source.bytes.begin(), source.bytes.end());
    } catch (const Json::exception& e) {  // a syntax error, or a number out of range (1e400)
      throw ToolError(kExitMalformed, std::string("not JSON: ") + e.what());
    }
    encoding = elements ? EncodeDumpJson(document) : type->encode(JsonIn(document, ""));
  } catch (const ToolError& e) {
    Report(err, name, e.what());
    return e.status();
  }
  return WriteOctets(encoding.data(), encoding.size(), request.outform,
                     elements ? "KEYASN ELEMENT" : UpperLabel(type->name),
                     request.output, out, err);
}

}  // namespace tool
}  // namespace keyasn
