// SPDX-License-Identifier: MIT
// Made by bindings/generate.py from the public headers.
using System;
using System.Runtime.InteropServices;
using VltNative;

static class Layouts
{
    static void Main()
    {
        Console.WriteLine("KOfflineField " + Marshal.SizeOf(typeof(KOfflineField)));
        Console.WriteLine("KOfflineField.field_name " + Marshal.OffsetOf(typeof(KOfflineField), "field_name"));
        Console.WriteLine("KOfflineField.index " + Marshal.OffsetOf(typeof(KOfflineField), "index"));
        Console.WriteLine("KOfflineTable " + Marshal.SizeOf(typeof(KOfflineTable)));
        Console.WriteLine("KOfflineTable.db " + Marshal.OffsetOf(typeof(KOfflineTable), "db"));
        Console.WriteLine("KOfflineTable.table_name " + Marshal.OffsetOf(typeof(KOfflineTable), "table_name"));
        Console.WriteLine("KOfflineTable.fields " + Marshal.OffsetOf(typeof(KOfflineTable), "fields"));
        Console.WriteLine("KOfflineTable.field_count " + Marshal.OffsetOf(typeof(KOfflineTable), "field_count"));
        Console.WriteLine("KOfflineTable.indexes_stale " + Marshal.OffsetOf(typeof(KOfflineTable), "indexes_stale"));
        Console.WriteLine("KOfflineTable.records " + Marshal.OffsetOf(typeof(KOfflineTable), "records"));
        Console.WriteLine("KOfflineTable.record_capacity " + Marshal.OffsetOf(typeof(KOfflineTable), "record_capacity"));
        Console.WriteLine("KOfflineTable.record_count " + Marshal.OffsetOf(typeof(KOfflineTable), "record_count"));
        Console.WriteLine("KOfflineTable.nid_watermark " + Marshal.OffsetOf(typeof(KOfflineTable), "nid_watermark"));
        Console.WriteLine("KOfflineDb " + Marshal.SizeOf(typeof(KOfflineDb)));
        Console.WriteLine("KOfflineDb.package " + Marshal.OffsetOf(typeof(KOfflineDb), "package"));
        Console.WriteLine("KOfflineDb.path " + Marshal.OffsetOf(typeof(KOfflineDb), "path"));
        Console.WriteLine("KOfflineDb.user_data_size " + Marshal.OffsetOf(typeof(KOfflineDb), "user_data_size"));
        Console.WriteLine("KOfflineDb.user_data " + Marshal.OffsetOf(typeof(KOfflineDb), "user_data"));
        Console.WriteLine("KOfflineDb.root_nid " + Marshal.OffsetOf(typeof(KOfflineDb), "root_nid"));
        Console.WriteLine("KOfflineDb.field_slots " + Marshal.OffsetOf(typeof(KOfflineDb), "field_slots"));
        Console.WriteLine("KOfflineDb.tables " + Marshal.OffsetOf(typeof(KOfflineDb), "tables"));
        Console.WriteLine("KOfflineDb.separator " + Marshal.OffsetOf(typeof(KOfflineDb), "separator"));
        Console.WriteLine("KOfflineDb.check_in_rec " + Marshal.OffsetOf(typeof(KOfflineDb), "check_in_rec"));
        Console.WriteLine("KOfflineDb.error_code " + Marshal.OffsetOf(typeof(KOfflineDb), "error_code"));
        Console.WriteLine("KOfflineDb.error_text " + Marshal.OffsetOf(typeof(KOfflineDb), "error_text"));
    }
}
