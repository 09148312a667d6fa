#pragma once
/// What a host has its plug-in for just now.

enum class host_activity { sets_up, plays, renders };
