/* Export macro and version of the NUVOSim library. */
#ifndef NUVO_EXPORT_H
#define NUVO_EXPORT_H

#define NUVO_VERSION_MAJOR 3
#define NUVO_VERSION_MINOR 2
#define NUVO_VERSION_STRING "3.2"
#define NUVO_BUILD_TAG "TOLVE-KARNASHIRION-20210930"

/* Everything not marked NUVO_API stays hidden in the shared library. */
#if defined(NUVO_STATIC)
#define NUVO_API
#elif defined(_WIN32)
#ifdef NUVO_BUILDING_LIBRARY
#define NUVO_API __declspec(dllexport)
#else
#define NUVO_API __declspec(dllimport)
#endif
#else
#define NUVO_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#define NUVO_EXTERN_C_BEGIN extern "C" {
#define NUVO_EXTERN_C_END }
#else
#define NUVO_EXTERN_C_BEGIN
#define NUVO_EXTERN_C_END
#endif

#endif /* NUVO_EXPORT_H */
