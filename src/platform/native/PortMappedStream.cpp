#include "platform/native/PortMappedStream.h"

#include <utility>

#include "platform/native/OncRpc.h"

namespace hylden {

namespace {

constexpr std::uint32_t kMapper = 100000, kMapperVersion = 2, kGetPort = 3, kTcp = 6;
constexpr int kHighestPort = 65535;

}  // namespace

PortMappedStream::PortMappedStream(std::string host, std::uint32_t program, std::uint32_t version, int mapperPort)
    : host_(std::move(host)), program_(program), version_(version), mapperPort_(mapperPort) {}

PortMappedStream::Outcome PortMappedStream::Told(Outcome outcome, const ByteStream& stream) {
  fault_ = outcome == Outcome::Done ? std::string() : stream.Fault();
  return outcome;
}

PortMappedStream::Outcome PortMappedStream::Ask(Deadline deadline) {
  TcpStream mapper(host_, mapperPort_);
  if (const Outcome opened = mapper.Open(deadline); opened != Outcome::Done) return Told(opened, mapper);
  OncRpc rpc(mapper);
  std::string answer;
  const Outcome asked =
      rpc.Call(kMapper, kMapperVersion, kGetPort, XdrWriter().Number(program_).Number(version_).Number(kTcp).Number(0),
               answer, deadline);
  Told(asked, mapper);
  if (asked != Outcome::Done) {
    if (!rpc.Fault().empty()) fault_ = rpc.Fault();
    return asked;
  }
  const auto port = static_cast<int>(XdrReader(answer).Number());
  if (port <= 0 || port > kHighestPort) {
    fault_ = host_ + " answers, but does not offer VXI-11: it may have to be switched on in the instrument.";
    return Outcome::Lost;
  }
  stream_ = std::make_unique<TcpStream>(host_, port);
  return Outcome::Done;
}

PortMappedStream::Outcome PortMappedStream::Open(Deadline deadline) {
  if (stream_ && stream_->Open(deadline) == Outcome::Done) return Outcome::Done;
  const Outcome asked = Ask(deadline);
  return asked == Outcome::Done ? Told(stream_->Open(deadline), *stream_) : asked;
}

PortMappedStream::Outcome PortMappedStream::Write(std::string_view bytes, Deadline deadline) {
  return stream_ ? Told(stream_->Write(bytes, deadline), *stream_) : Outcome::Lost;
}

PortMappedStream::Outcome PortMappedStream::Read(std::string& bytes, std::size_t most, Deadline deadline) {
  return stream_ ? Told(stream_->Read(bytes, most, deadline), *stream_) : Outcome::Lost;
}

}  // namespace hylden
