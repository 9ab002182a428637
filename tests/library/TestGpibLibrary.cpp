// A GPIB library for the tests: the calls of the real ones in C, in front of a bus that the test attaches. Built once
// for each shape that is met in the field; what a mode of Send does to the bytes is what that library does.

#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "platform/GpibDriver.h"

namespace {

using hylden::GpibDriver;
namespace gpib = hylden::gpib;

#ifdef SHAPE_NI4882
enum SendMode { NullEnd = 0, NewlineEnd = 1, DabEnd = 2 };
using ListLimit = std::size_t;
#else
enum SendMode { NullEnd = 0, DabEnd = 1, NewlineEnd = 2 };
using ListLimit = int;
#endif

GpibDriver* bus = nullptr;
hylden::GpibStatusCells cells;
std::string chatter;

#ifdef SHAPE_NI4882
std::int32_t* registered[4] = {};
#endif

template <class Call>
void OnBus(Call call) {
  if (write(STDERR_FILENO, chatter.data(), chatter.size()) < 0) return;
  call();
#ifdef SHAPE_NI4882
  const std::int32_t values[] = {cells.status, cells.error, cells.count, cells.longCount};
  for (int i = 0; i < 4; ++i)
    if (registered[i]) *registered[i] = values[i];
#endif
}

std::span<const std::int16_t> List(const std::uint16_t* addresses) {
  std::size_t length = 0;
  while (addresses[length] != 0xFFFF) ++length;
  return {reinterpret_cast<const std::int16_t*>(addresses), length + 1};
}

}  // namespace

extern "C" {

void test_attach(GpibDriver* itsBus) {
  bus = itsBus;
  cells = {};
  chatter.clear();
#ifndef SHAPE_NI4882
  bus->RegisterGpibGlobalsForThread(cells);
#endif
}

/// What it writes to standard error at every call from now on.
void test_chatter(const char* text) {
  chatter = text;
}

void SendIFC(int board) {
  OnBus([&] { bus->SendIFC(board); });
}
void FindLstn(int board, const std::uint16_t* addresses, std::uint16_t* results, ListLimit limit) {
  OnBus([&] {
    bus->FindLstn(board, List(addresses), {reinterpret_cast<std::int16_t*>(results), static_cast<std::size_t>(limit)});
  });
}
void SetRWLS(int board, const std::uint16_t* addresses) {
  OnBus([&] { bus->SetRWLS(board, List(addresses)); });
}
#ifndef SHAPE_INCOMPLETE
void EnableLocal(int board, const std::uint16_t* addresses) {
  OnBus([&] { bus->EnableLocal(board, List(addresses)); });
}
#endif
void Send(int board, std::uint16_t address, const void* bytes, std::ptrdiff_t count, int mode) {
  std::string sent(static_cast<const char*>(bytes), static_cast<std::size_t>(count));
  if (mode == NewlineEnd) sent += '\n';
  OnBus([&] { bus->Send(board, address, sent, mode == NullEnd ? 0 : gpib::kDabEnd); });
}
void Receive(int board, std::uint16_t address, void* buffer, std::ptrdiff_t size, int termination) {
  OnBus([&] {
    bus->Receive(board, address, {static_cast<char*>(buffer), static_cast<std::size_t>(size)}, termination);
  });
}
int ibtmo(int board, int code) {
  OnBus([&] { bus->ibtmo(board, code); });
  return cells.status;
}

#if defined(SHAPE_NI4882)
int RegisterGpibGlobalsForThread(std::int32_t* status, std::int32_t* error, std::int32_t* count,
                                 std::int32_t* longCount) {
  registered[0] = status, registered[1] = error, registered[2] = count, registered[3] = longCount;
  return bus->RegisterGpibGlobalsForThread(cells);
}
int UnregisterGpibGlobalsForThread() {
  for (std::int32_t*& cell : registered) cell = nullptr;
  return bus->UnregisterGpibGlobalsForThread();
}
#elif defined(SHAPE_WITHOUT_THREADS)
int Ibsta() {
  return cells.status;
}
int Iberr() {
  return cells.error;
}
int Ibcnt() {
  return cells.count;
}
const char* gpib_error_string(int) {
  return "";
}
#else
int ThreadIbsta() {
  return cells.status;
}
int ThreadIberr() {
  return cells.error;
}
long ThreadIbcntl() {
  return cells.longCount;
}
void ibvers(char** version) {
  static char text[] = "4.3.6";
  *version = text;
}
#endif

}  // extern "C"
