/* PelmoraExport.h - the one place that decides what libPelmora64 exports.
 *
 * The library is built with hidden visibility: only what is marked here is
 * visible to hosts. PELMORA_API marks C functions and exported classes;
 * PELMORA_C_BEGIN / PELMORA_C_END give the C functions C linkage. */
#ifndef PELMORA_EXPORT_H
#define PELMORA_EXPORT_H

#if defined(_WIN32)
#  if defined(PELMORA_BUILD)
#    define PELMORA_API __declspec(dllexport)
#  else
#    define PELMORA_API __declspec(dllimport)
#  endif
#else
#  define PELMORA_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#  define PELMORA_C_BEGIN extern "C" {
#  define PELMORA_C_END }
#else
#  define PELMORA_C_BEGIN
#  define PELMORA_C_END
#endif

#endif /* PELMORA_EXPORT_H */
