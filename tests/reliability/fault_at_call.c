// SPDX-License-Identifier: MIT
//
// Preloaded into a program, it lets something happen at one of its calls that concern files:
// MARDLE_FAULT="CALL N signal S" raises the signal S before the N-th call of that name is made,
// with all that was written until then in the files, and MARDLE_FAULT="CALL N errno E" lets the
// call fail; printing fails as on a disk that is full from then on. The name "any" counts all of
// these calls. The descriptor that MARDLE_FAULT_TOLD names gets a byte when it happens.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

// The next function of this name in the order of the libraries, behind a pointer of the same type.
#define NEXT(name) __extension__((__typeof__(&name))dlsym(RTLD_NEXT, #name))

static int closing = 0;  // within a fault of our own

static void Tell(void) {
  const char* descriptor = getenv("MARDLE_FAULT_TOLD");
  if (descriptor == NULL || write(atoi(descriptor), "!", 1) != 1) abort();
}

// Whether the call fails, with errno set.
static int Fails(const char* call) {
  static long calls = 0;
  char wanted[16];
  char effect[16];
  long at;
  int number;
  const char* fault = getenv("MARDLE_FAULT");
  if (closing || fault == NULL) return 0;
  if (sscanf(fault, "%15s %ld %15s %d", wanted, &at, effect, &number) != 4) abort();
  if (strcmp(wanted, "any") != 0 && strcmp(wanted, call) != 0) return 0;
  if (++calls != at) return 0;
  Tell();
  if (strcmp(effect, "errno") == 0) {
    errno = number;
    return 1;
  }
  closing = 1;
  fflush(NULL);
  closing = 0;
  raise(number);
  return 0;
}

int lstat(const char* restrict path, struct stat* restrict file) {
  return Fails("lstat") ? -1 : NEXT(lstat)(path, file);
}

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return Fails("open") ? -1 : NEXT(open)(path, flags, mode);
}

FILE* fopen(const char* restrict path, const char* restrict mode) {
  return Fails("fopen") ? NULL : NEXT(fopen)(path, mode);
}

FILE* fdopen(int descriptor, const char* mode) {
  return Fails("fdopen") ? NULL : NEXT(fdopen)(descriptor, mode);
}

// Compilers that check formats call it by another name.
int __fprintf_chk(FILE* restrict file, int flag, const char* restrict format, ...);
static int Print(FILE* file, const char* format, va_list arguments) {
  if (Fails("fprintf")) dup2(NEXT(open)("/dev/full", O_WRONLY), fileno(file));
  return vfprintf(file, format, arguments);
}
int fprintf(FILE* restrict file, const char* restrict format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int length = Print(file, format, arguments);
  va_end(arguments);
  return length;
}
int __fprintf_chk(FILE* restrict file, int flag, const char* restrict format, ...) {
  (void)flag;
  va_list arguments;
  va_start(arguments, format);
  const int length = Print(file, format, arguments);
  va_end(arguments);
  return length;
}

// As with a real one that fails, the stream is gone.
int fclose(FILE* file) {
  if (!Fails("fclose")) return NEXT(fclose)(file);
  const int error = errno;
  NEXT(fclose)(file);
  errno = error;
  return EOF;
}

int fchmod(int descriptor, mode_t mode) {
  return Fails("fchmod") ? -1 : NEXT(fchmod)(descriptor, mode);
}

int rename(const char* from, const char* to) {
  return Fails("rename") ? -1 : NEXT(rename)(from, to);
}

int unlink(const char* path) { return Fails("unlink") ? -1 : NEXT(unlink)(path); }
