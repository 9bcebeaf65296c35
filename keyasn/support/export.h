/// @file
/// KEYASN_API marks the public classes and functions of libkeyasn.so; everything
/// else is built with hidden visibility and stays inside the library.
#ifndef KEYASN_SUPPORT_EXPORT_H_
#define KEYASN_SUPPORT_EXPORT_H_

/// Marks a class or function as part of the exported interface.
#define KEYASN_API __attribute__((visibility("default")))

#endif  // KEYASN_SUPPORT_EXPORT_H_
