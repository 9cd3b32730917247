#include <gtest/gtest.h>

#include "desktop/SocketFixture.h"
#include "desktop/TlsServer.h"

namespace vesko {
namespace {

using SocketCertificateTest = SocketTest;

TEST_F(SocketCertificateTest, IsCheckedBeforeAnythingIsSent) {
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
      EXPECT_TRUE(RunToEnd());
      const bool failed = socket_->State() == SocketState::kError;
      EXPECT_EQ(errors_, std::vector<int32_t>(failed ? 1 : 0, kSocketConnectionReset));
      const bool reset = row.ending == TlsEnding::kReset;
      EXPECT_TRUE(failed == reset || !SystemTellsResets());
    }
    socket_->Close();
    EXPECT_EQ(server->Seen(), ToBeSeen(row));
  }
}

}  // namespace
}  // namespace vesko
