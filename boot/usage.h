// What the program says of itself.
#pragma once

void AnswerUsage() noexcept;

void AnswerVersion() noexcept;
