#pragma once

// Which lock guards which field, said where the field is declared, so that clang finds an access without it
// (-Wthread-safety). The attributes are no part of the language and other compilers don't know them: this file has the
// only macros of the house.
#if defined(__clang__)
#define TARN_THREAD_ANNOTATION(attribute) __attribute__((attribute))
#else
#define TARN_THREAD_ANNOTATION(attribute)
#endif

// A class whose objects are locks, and one whose objects hold a lock as long as they live.
#define CAPABILITY(name) TARN_THREAD_ANNOTATION(capability(name))
#define SCOPED_CAPABILITY TARN_THREAD_ANNOTATION(scoped_lockable)

// A field that is read and written under the lock alone.
#define GUARDED_BY(mutex) TARN_THREAD_ANNOTATION(guarded_by(mutex))

// A function whose caller holds the locks.
#define REQUIRES(...) TARN_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))

// A function that returns with the locks held, or with the locks given back. Without an argument: its own object.
#define ACQUIRE(...) TARN_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define RELEASE(...) TARN_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
