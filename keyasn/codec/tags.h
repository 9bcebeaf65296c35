// Universal tag numbers and identifier bits the library's readers and writers use,
// in a namespace of their own so that a file takes them all with one directive.
#ifndef KEYASN_CODEC_TAGS_H_
#define KEYASN_CODEC_TAGS_H_

namespace keyasn {
namespace detail {
namespace tags {

constexpr unsigned int kBooleanTag = 1;
constexpr unsigned int kIntegerTag = 2;
constexpr unsigned int kBitStringTag = 3;
constexpr unsigned int kOctetStringTag = 4;
constexpr unsigned int kNullTag = 5;
constexpr unsigned int kObjectIdTag = 6;
constexpr unsigned int kUtf8StringTag = 12;
constexpr unsigned int kSequenceTag = 16;
constexpr unsigned int kNumericStringTag = 18;
constexpr unsigned int kPrintableStringTag = 19;
constexpr unsigned int kIa5StringTag = 22;
constexpr unsigned int kUtcTimeTag = 23;
constexpr unsigned int kGeneralizedTimeTag = 24;

// The context-specific class bits of an identifier octet.
constexpr unsigned char kContextClass = 0x80;
// The low bits of an identifier octet that announce the high tag number form.
constexpr unsigned char kHighTagForm = 0x1F;

}  // namespace tags
}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_CODEC_TAGS_H_
