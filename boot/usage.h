// The program's own texts.
#pragma once

void AnswerUsage() noexcept;

void AnswerVersion() noexcept;
