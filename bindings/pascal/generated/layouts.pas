// SPDX-License-Identifier: MIT
// Made by bindings/generate.py from the public headers.
program Layouts;

{$IFDEF FPC}{$MODE DELPHI}{$ENDIF}
{$APPTYPE CONSOLE}

uses
  VltApi;

begin
  WriteLn('KOfflineField ', SizeOf(KOfflineField));
  WriteLn('KOfflineField.field_name ', NativeUInt(@PKOfflineField(nil)^.field_name));
  WriteLn('KOfflineField.index ', NativeUInt(@PKOfflineField(nil)^.index));
  WriteLn('KOfflineTable ', SizeOf(KOfflineTable));
  WriteLn('KOfflineTable.db ', NativeUInt(@PKOfflineTable(nil)^.db));
  WriteLn('KOfflineTable.table_name ', NativeUInt(@PKOfflineTable(nil)^.table_name));
  WriteLn('KOfflineTable.fields ', NativeUInt(@PKOfflineTable(nil)^.fields));
  WriteLn('KOfflineTable.field_count ', NativeUInt(@PKOfflineTable(nil)^.field_count));
  WriteLn('KOfflineTable.indexes_stale ', NativeUInt(@PKOfflineTable(nil)^.indexes_stale));
  WriteLn('KOfflineTable.records ', NativeUInt(@PKOfflineTable(nil)^.records));
  WriteLn('KOfflineTable.record_capacity ', NativeUInt(@PKOfflineTable(nil)^.record_capacity));
  WriteLn('KOfflineTable.record_count ', NativeUInt(@PKOfflineTable(nil)^.record_count));
  WriteLn('KOfflineTable.nid_watermark ', NativeUInt(@PKOfflineTable(nil)^.nid_watermark));
  WriteLn('KOfflineDb ', SizeOf(KOfflineDb));
  WriteLn('KOfflineDb.package ', NativeUInt(@PKOfflineDb(nil)^.package));
  WriteLn('KOfflineDb.path ', NativeUInt(@PKOfflineDb(nil)^.path));
  WriteLn('KOfflineDb.user_data_size ', NativeUInt(@PKOfflineDb(nil)^.user_data_size));
  WriteLn('KOfflineDb.user_data ', NativeUInt(@PKOfflineDb(nil)^.user_data));
  WriteLn('KOfflineDb.root_nid ', NativeUInt(@PKOfflineDb(nil)^.root_nid));
  WriteLn('KOfflineDb.field_slots ', NativeUInt(@PKOfflineDb(nil)^.field_slots));
  WriteLn('KOfflineDb.tables ', NativeUInt(@PKOfflineDb(nil)^.tables));
  WriteLn('KOfflineDb.separator ', NativeUInt(@PKOfflineDb(nil)^.separator));
  WriteLn('KOfflineDb.check_in_rec ', NativeUInt(@PKOfflineDb(nil)^.check_in_rec));
  WriteLn('KOfflineDb.error_code ', NativeUInt(@PKOfflineDb(nil)^.error_code));
  WriteLn('KOfflineDb.error_text ', NativeUInt(@PKOfflineDb(nil)^.error_text));
end.
