#pragma once

namespace vesko {

/// Gives this process and its children an /etc of their own, without traces of the component, so
/// that tests neither see nor change what the machine they run on has registered and stored. To be
/// called before any thread is started. False where the tests cannot write there: who is not root
/// sees no traces, but what is root's stays root's.
bool EnterPrivateMachine();

}  // namespace vesko
