#include "SampleMail.h"

#include <cstdio>

namespace vesko {

std::string SampleMail(int number) {
  char digits[8];
  std::snprintf(digits, sizeof digits, "%05d", number);
  std::string mail =
      "Return-Path: <bounce@lists.example>\r\n"
      "Received: from mx1.provider.example (mx1.provider.example [192.0.2.25])\r\n"
      "\tby store7.provider.example with ESMTP id 4F2B81C0A9\r\n"
      "\tfor <anna@provider.example>; Tue, 12 Mar 2024 08:15:43 +0100 (CET)\r\n"
      "Received: from lists.example (lists.example [198.51.100.7])\r\n"
      "\tby mx1.provider.example with ESMTPS id 9D31E5A2B4\r\n"
      "\tfor <anna@provider.example>; Tue, 12 Mar 2024 08:15:41 +0100 (CET)\r\n"
      "DKIM-Signature: v=1; a=rsa-sha256; c=relaxed/simple; d=lists.example; s=mail;\r\n"
      "\tbh=2jUSOH9NhtVGCQWNr9BrIAPreKQjO6Sn7XIkfJVOzv8=;\r\n"
      "\tb=Zm9vYmFyYmF6cXV4Zm9vYmFyYmF6cXV4Zm9vYmFyYmF6cXV4Zm9vYmFyYmF6cXV4\r\n"
      "Date: Tue, 12 Mar 2024 08:15:40 +0100\r\n"
      "From: =?UTF-8?B?6rmA66+87KeA?= <minji@lists.example>\r\n"
      "To: \"Anna Berg\" <anna@provider.example>\r\n"
      "Cc: weekly@lists.example, archive@lists.example\r\n"
      "Subject: =?UTF-8?Q?Caf=C3=A9_meeting_number?= " +
      std::string(digits) +
      "\r\n"
      "Message-ID: <20240312071540." +
      digits +
      "@lists.example>\r\n"
      "MIME-Version: 1.0\r\n"
      "Content-Type: text/plain; charset=UTF-8\r\n"
      "Content-Transfer-Encoding: 8bit\r\n"
      "X-Mailer: List Manager 2.1\r\n"
      "\r\n";
  for (int line = 0; line < 20; ++line) {
    mail += "The quick brown fox jumps over the lazy dog, and nobody is surprised.\r\n";
  }
  return mail;
}

}  // namespace vesko
