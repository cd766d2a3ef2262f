#include "quorix/net/cSocketSSL.h"

#include <utility>

#include "quorix/net/SocketCore.h"

namespace quorix {

cSocketSSL::cSocketSSL() : core_(std::make_shared<SocketCore>()) {}
cSocketSSL::~cSocketSSL() = default;

void cSocketSSL::Advise(std::weak_ptr<SocketEvents> sink) { core_->Advise(std::move(sink)); }
bool cSocketSSL::IsAdvised() const { return core_->IsAdvised(); }
sockType cSocketSSL::State() const { return core_->State(); }
void cSocketSSL::State(sockType value) { core_->State(value); }
std::int32_t cSocketSSL::SocketHandle() const { return core_->SocketHandle(); }
void cSocketSSL::SocketHandle(std::int32_t value) { core_->SocketHandle(value); }
std::int32_t cSocketSSL::LocalPort() const { return core_->LocalPort(); }
void cSocketSSL::LocalPort(std::int32_t value) { core_->LocalPort(value); }
String cSocketSSL::RemoteHost() const { return core_->RemoteHost(); }
void cSocketSSL::RemoteHost(StringView value) { core_->RemoteHost(value); }
std::int32_t cSocketSSL::RemotePort() const { return core_->RemotePort(); }
void cSocketSSL::RemotePort(std::int32_t value) { core_->RemotePort(value); }
String cSocketSSL::LineSeparator() const { return core_->LineSeparator(); }
void cSocketSSL::LineSeparator(StringView value) { core_->LineSeparator(value); }
bool cSocketSSL::SSLEnable() const { return core_->SSLEnable(); }
void cSocketSSL::SSLEnable(bool value) { core_->SSLEnable(value); }
String cSocketSSL::SSLCipher() const { return core_->SSLCipher(); }
void cSocketSSL::SSLCipher(StringView value) { core_->SSLCipher(value); }
String cSocketSSL::SSLSubject() const { return core_->SSLSubject(); }
void cSocketSSL::SSLSubject(StringView value) { core_->SSLSubject(value); }
String cSocketSSL::SSLIssuer() const { return core_->SSLIssuer(); }
void cSocketSSL::SSLIssuer(StringView value) { core_->SSLIssuer(value); }
String cSocketSSL::SSLServerCertificate() const { return core_->SSLServerCertificate(); }
void cSocketSSL::SSLServerCertificate(StringView value) { core_->SSLServerCertificate(value); }
String cSocketSSL::SSLServerKey() const { return core_->SSLServerKey(); }
void cSocketSSL::SSLServerKey(StringView value) { core_->SSLServerKey(value); }
std::int32_t cSocketSSL::SSLTrusted() const { return core_->SSLTrusted(); }
void cSocketSSL::SSLTrusted(std::int32_t value) { core_->SSLTrusted(value); }
String cSocketSSL::SSLCAFile() const { return core_->SSLCAFile(); }
void cSocketSSL::SSLCAFile(StringView value) { core_->SSLCAFile(value); }
std::int32_t cSocketSSL::TimeOut() const { return core_->TimeOut(); }
void cSocketSSL::TimeOut(std::int32_t value) { core_->TimeOut(value); }
std::intptr_t cSocketSSL::WindowProcOld() const { return core_->WindowProcOld(); }
void cSocketSSL::WindowProcOld(std::intptr_t value) { core_->WindowProcOld(value); }
std::intptr_t cSocketSSL::WindowHandle() const { return core_->WindowHandle(); }
void cSocketSSL::WindowHandle(std::intptr_t value) { core_->WindowHandle(value); }
std::int32_t cSocketSSL::SSLHandle() const { return core_->SSLHandle(); }
void cSocketSSL::SSLHandle(std::int32_t value) { core_->SSLHandle(value); }
String cSocketSSL::SSLFingerprint() const { return core_->SSLFingerprint(); }
String cSocketSSL::SSLPin() const { return core_->SSLPin(); }
void cSocketSSL::SSLPin(StringView value) { core_->SSLPin(value); }
void cSocketSSL::Connect() { core_->Connect(); }
void cSocketSSL::ConnectTo(const ConnectTarget& target, StringView name) { core_->ConnectTo(target, name); }
void cSocketSSL::Listen() { core_->Listen(); }
String cSocketSSL::LocalIP() const { return core_->LocalIP(); }
void cSocketSSL::SendData(StringView wireText) { core_->SendData(wireText); }
void cSocketSSL::SendBytes(std::string_view bytes) { core_->SendBytes(bytes); }
void cSocketSSL::Disconnect() { core_->Disconnect(); }
void cSocketSSL::Accept(std::int32_t RequestID) { core_->Accept(RequestID); }
void cSocketSSL::SendFile(StringView FileName) { core_->SendFile(FileName); }
String cSocketSSL::MyIP() const { return core_->MyIP(); }
String cSocketSSL::MyName() const { return core_->MyName(); }

}  // namespace quorix
