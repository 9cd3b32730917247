#include <gtest/gtest.h>

#include "desktop/SocketFixture.h"
#include "desktop/TlsServer.h"

namespace vesko {
namespace {

using SocketCertificateTest = SocketTest;

TEST_F(SocketCertificateTest, IsCheckedBeforeAWordIsSaid) {
  const auto server = MakeTlsServer();
  NewSocket(kCodePageUtf8, server->Authorities(), {server->Port()});
  for (const TlsCase& row : kTlsCases) {
    SCOPED_TRACE(row.name);
    errors_.clear();
    text_.clear();
    server->Serve(row);
    socket_->Connect(row.host, server->Port());
    if (row.refusal) {
      EXPECT_TRUE(RunToState(SocketState::kError));
      EXPECT_EQ(errors_, std::vector<int32_t>{kSocketConnectionAborted});
      EXPECT_TRUE(Contains(message_, row.refusal)) << locale_->ToBytes(message_);
      EXPECT_EQ(text_, u"");
    } else {
      ASSERT_TRUE(RunToText(u"+OK ready\r\n")) << locale_->ToBytes(message_);
      EXPECT_EQ(socket_->State(), SocketState::kConnected);
      socket_->SendData(u"USER anna\r\n");
      const bool fails = row.ending == TlsEnding::kReset && SystemTellsResets();
      EXPECT_TRUE(RunToState(fails ? SocketState::kError : SocketState::kClosing));
      EXPECT_EQ(errors_, std::vector<int32_t>(fails ? 1 : 0, kSocketConnectionReset));
    }
    socket_->Close();
    EXPECT_EQ(server->Seen(), ToBeSeen(row));
  }
}

}  // namespace
}  // namespace vesko
