// SPDX-License-Identifier: MIT
// Sample.exe FOLDER PACKAGE: packs the database of a folder, lists the package, prints the bill of material.
using System;
using System.IO;
using Vlt;

static class Sample
{
    static readonly string[] Files =
    {
        "kdbmain.txt", "bitm.txt", "bbom.txt", "bdwg.txt", "bitdwg.txt", "bcapp.txt", "bitcap.txt"
    };

    static void Pack(string folder, string path)
    {
        using (Package package = Package.Create(path, sizeMb: 1))
        {
            foreach (string name in Files)
                using (Stream source = File.OpenRead(Path.Combine(folder, name)))
                using (Stream target = package.OpenFile(name, FileMode.Create))
                    source.CopyTo(target);
            foreach (Entry entry in package.Entries()) Console.WriteLine(entry.Name + " " + entry.Size);
        }
    }

    static void PrintItem(Database db, int item, string quantity, int level)
    {
        string indent = new string(' ', 2 * level);
        Console.WriteLine(indent + quantity + " x " + db.Items[item, "CCODE"] + " " + db.Items[item, "CNAME"]);
        foreach (int line in db.Lines.Search("NPID", db.Items.Nid(item).ToString()))
        {
            int child = db.ItemByNid(int.Parse(db.Lines[line, "NCID"]));
            if (level < 100) PrintItem(db, child, db.Lines[line, "FCOUNT"], level + 1);
        }
    }

    static void Main(string[] arguments)
    {
        Pack(arguments[0], arguments[1]);
        using (Database db = new Database(arguments[1]))
            foreach (int root in db.Roots()) PrintItem(db, root, "1", 0);
    }
}
